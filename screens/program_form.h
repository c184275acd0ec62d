// ProgramForm (F1): the directory and program combos, the selection of the program into the
// active slot with a progress indication while the passes run, and the way to the program's
// other screens: view, edit, list, search, batch and restart.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <string>

#include "files/program_store.h"
#include "screens/program_form_frame.h"
#include "system/slots.h"

namespace kirvana {

class Panel;

class ProgramForm : public PanelForm {
public:
    explicit ProgramForm(Panel& panel);
    // Fills the combos: the program store's directories and the removable drives, the current
    // directory chosen, and its programs.
    void Activate() override;

    // The programs of the directory (or of the drive of that caption) into ProgramCombo.
    void FillProgramCombo(const std::string& directory);
    // A directory and program chosen on another screen.
    void Choose(const std::string& directory, const std::string& program);

    QComboBox* DirectoryCombo() { return directories_; }
    QComboBox* ProgramCombo() { return programs_; }
    QLineEdit* SearchBox() { return search_; }
    QLabel* SlotLabel() { return slotLabel_; }
    QProgressBar* ProgressBar() { return progress_; }
    QLabel* ProgressLabel() { return progressLabel_; }
    QPushButton* SelectButton() { return select_; }
    // The stages the last selection went through, as the progress indication showed them.
    int StagesShown() const { return stagesShown_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    std::string Directory() const;
    std::string Program() const;
    void Select();
    void ShowStage(SelectStage stage);
    void OpenList();
    void OpenSearch();
    void OpenEditor();
    void PadFor(QComboBox* combo);

    // DirectoryCombo's entries: the store's directories, then the removable drives.
    std::vector<DirectoryChoice> choices_;
    QLabel* slotLabel_;
    QComboBox* directories_;
    QComboBox* programs_;
    QLineEdit* search_;
    QLabel* progressLabel_;
    QProgressBar* progress_;
    QPushButton* select_;
    ButtonKeys keys_;
    int stagesShown_ = 0;
};

// Registers the program screens by their system names.
class FormRegistry;
void RegisterProgramForms(Panel& panel, FormRegistry& forms);

}  // namespace kirvana
