// The frame of every form but FrontEnd: a modal screen known by its system name. A key the form
// doesn't use goes on to MainKey, so that F1 to F12 work everywhere.
#pragma once

#include <QDialog>
#include <string>

namespace kirvana {

class Panel;

class PanelForm : public QDialog {
public:
    PanelForm(Panel& panel, std::string name);
    const std::string& Name() const { return name_; }
    // Called each time the form is shown; fills it from the model.
    virtual void Activate() {}
    // Called after each poll tick while the form is showing.
    virtual void ShowModel() {}

protected:
    // The form's own keys; false passes the key on to MainKey.
    virtual bool FormKey(int /*code*/, QKeyEvent& /*event*/) { return false; }
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

    Panel& panel_;

private:
    std::string name_;
};

}  // namespace kirvana
