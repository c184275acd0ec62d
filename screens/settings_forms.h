// PunchSettingsForm and PlasmaSettingsForm: the process values of the chosen station or of the
// program's plasma cut, from a saved set or typed through the pads, applied to the program
// (written beside it and sent to the card) or saved as a named set.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <array>
#include <vector>

#include "screens/panel_form.h"
#include "tooling/settings.h"

namespace kirvana {

// The frame both forms share: the saved sets, the description box and a row per value.
class SettingsForm : public PanelForm {
public:
    QListWidget* SettingsList() { return list_; }
    QPushButton* DescriptionBox() { return description_; }
    QComboBox* SettingsCombo(int n) { return combos_[static_cast<std::size_t>(n - 1)]; }
    QPushButton* PadButton(int n) { return pads_[static_cast<std::size_t>(n - 1)]; }
    QLabel* SettingsLabel(int n) { return labels_[static_cast<std::size_t>(n - 1)]; }
    QPushButton* SaveButton() { return save_; }
    QPushButton* ExitButton() { return exit_; }
    // The texts of the boxes, in their order.
    std::vector<std::string> Texts() const;
    // Sets box n (from 1) as the pad would.
    void SetText(int n, const std::string& text);

protected:
    SettingsForm(Panel& panel, std::string name, const char* caption, int rows, int height);
    bool FormKey(int code, QKeyEvent& event) override;
    // Fills the list with the sets of the extension, the labels and the choices.
    void FillFrame(const std::string& extension, const std::vector<std::string>& labels,
                   const std::vector<std::vector<std::string>>& choices);
    void ShowTexts(const std::string& description, const std::vector<std::string>& texts);
    void Warn(const std::string& text);
    // The set chosen in the list, and the save under the description's name.
    virtual void LoadSet(const std::string& name) = 0;
    virtual SaveOutcome SaveSet(const std::string& name, const AskOperator& ask) = 0;
    // The pad's mode of box n.
    virtual int PadMode(int n) const = 0;
    std::string Description() const;
    QWidget* ButtonRow() { return buttonRow_; }
    QPushButton* AddButton(const std::string& caption, const QString& objectName);
    // SAVE and EXIT close the row of buttons, after the form's own.
    void FinishButtons();

private:
    void FillList();
    void EnterValue(int n);
    void EnterDescription();
    void Save();

    std::string extension_;
    QListWidget* list_;
    QPushButton* description_;
    std::vector<QLabel*> labels_;
    std::vector<QComboBox*> combos_;
    std::vector<QPushButton*> pads_;
    QWidget* buttonRow_;
    QPushButton* save_;
    QPushButton* exit_;
};

class PunchSettingsForm : public SettingsForm {
public:
    explicit PunchSettingsForm(Panel& panel) : PunchSettingsForm(panel, "PunchSettingsForm") {}
    // The station the form works on (from 1), before it is shown.
    void Begin(int station) { station_ = station; }
    void Activate() override;
    // 1 "APPLY TO &TOOL", 2 "APPLY TO &ALL".
    QPushButton* ApplyButton(int n) { return apply_[static_cast<std::size_t>(n - 1)]; }

protected:
    // The same screen under another name (the dialogue's).
    PunchSettingsForm(Panel& panel, std::string name);
    void LoadSet(const std::string& name) override;
    SaveOutcome SaveSet(const std::string& name, const AskOperator& ask) override;
    int PadMode(int n) const override;
    // The settings of the boxes to the station (to all with `all`).
    virtual void Apply(bool all);
    int station_ = 1;

private:
    std::array<QPushButton*, 2> apply_{};
};

class PlasmaSettingsForm : public SettingsForm {
public:
    explicit PlasmaSettingsForm(Panel& panel) : PlasmaSettingsForm(panel, "PlasmaSettingsForm") {}
    void Activate() override;
    QPushButton* ApplyButton() { return apply_; }

protected:
    PlasmaSettingsForm(Panel& panel, std::string name);
    void LoadSet(const std::string& name) override;
    SaveOutcome SaveSet(const std::string& name, const AskOperator& ask) override;
    int PadMode(int n) const override;
    // The set of the boxes becomes the program's.
    virtual void Apply();

private:
    QPushButton* apply_;
};

}  // namespace kirvana
