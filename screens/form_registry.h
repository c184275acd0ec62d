// The forms by their system names: created on first use and kept, in the order loaded. Tests,
// `--form NAME` screenshots and the program switch's list of forms to close use this one table.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "screens/panel_form.h"

namespace kirvana {

class FormRegistry {
public:
    using Factory = std::function<std::unique_ptr<PanelForm>()>;

    void Register(const std::string& name, Factory factory) { factories_[name] = std::move(factory); }
    bool Known(const std::string& name) const { return factories_.count(name) != 0; }
    // The form, created now if it wasn't loaded; nullptr for a name no form answers to.
    PanelForm* Get(const std::string& name);
    // The form only if it is loaded.
    PanelForm* Loaded(const std::string& name) const;
    // The loaded forms, in the order they were loaded.
    const std::vector<PanelForm*>& LoadOrder() const { return order_; }
    std::vector<std::string> Names() const;

private:
    std::map<std::string, Factory> factories_;
    std::map<std::string, std::unique_ptr<PanelForm>> loaded_;
    std::vector<PanelForm*> order_;
};

}  // namespace kirvana
