Card in use: FALSE
Poll log: FALSE
******
