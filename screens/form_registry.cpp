#include "screens/form_registry.h"

namespace kirvana {

PanelForm* FormRegistry::Get(const std::string& name) {
    if (PanelForm* form = Loaded(name)) return form;
    auto factory = factories_.find(name);
    if (factory == factories_.end()) return nullptr;
    std::unique_ptr<PanelForm> form = factory->second();
    PanelForm* raw = form.get();
    loaded_[name] = std::move(form);
    order_.push_back(raw);
    return raw;
}

PanelForm* FormRegistry::Loaded(const std::string& name) const {
    auto it = loaded_.find(name);
    return it == loaded_.end() ? nullptr : it->second.get();
}

std::vector<std::string> FormRegistry::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : factories_) names.push_back(entry.first);
    return names;
}

}  // namespace kirvana
