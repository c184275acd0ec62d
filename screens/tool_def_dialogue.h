// ToolDefDialogue: the definition of a punch tool. Given a tool in its buffer, it shows the
// shape's frame with the dimensions in the unit of the program, takes every value through the
// pads and gives back the checked tool; a tool that fails its checks keeps the screen open with
// its message, and CANCEL leaves the buffer as it was.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <array>

#include "screens/panel_form.h"
#include "tooling/tool_definition.h"

namespace kirvana {

class ToolDefDialogue : public PanelForm {
public:
    explicit ToolDefDialogue(Panel& panel);
    // ToolBuffer and the unit before the form is shown.
    void Begin(const ToolRecord& tool, bool inches);
    const ToolRecord& ToolBuffer() const { return buffer_; }
    bool Accepted() const { return accepted_; }
    void Activate() override;

    QListWidget* ToolTypeList() { return list_; }
    QStackedWidget* Frames() { return frames_; }
    // Box n (from 1) of the frame of shape row `shape`; nullptr beyond its boxes.
    QPushButton* Box(int shape, int n) {
        return boxes_[static_cast<std::size_t>(shape)][static_cast<std::size_t>(n - 1)];
    }
    QLabel* BoxLabel(int shape, int n) {
        return labels_[static_cast<std::size_t>(shape)][static_cast<std::size_t>(n - 1)];
    }
    QPushButton* KeywayButton() { return keyway_; }
    QComboBox* SpecialCombo() { return special_; }
    QPushButton* PadButton() { return pad_; }
    QPushButton* OkButton() { return ok_; }
    QPushButton* ExitButton() { return exit_; }
    // Sets a box's text as the pad would (for the form's own use and for tests).
    void SetBox(int shape, int n, const std::string& text);
    // The OK button's work: true when the tool was taken.
    bool Confirm();

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void BuildFrame(int shape);
    void ShowShape(int shape);
    void EnterBox(int shape, int n);
    void EnterName();
    void FocusAfterEntry();
    void ShowKeyway();

    ToolRecord tool_;    // the form's own copy of ToolBuffer
    ToolRecord buffer_;  // ToolBuffer
    bool inches_ = false;
    bool accepted_ = false;
    int keywayState_ = 0;
    QListWidget* list_;
    QStackedWidget* frames_;
    std::array<std::array<QPushButton*, 4>, ToolShapeCount> boxes_{};
    std::array<std::array<QLabel*, 4>, ToolShapeCount> labels_{};
    QLabel* unit_;
    QPushButton* keyway_ = nullptr;
    QComboBox* special_ = nullptr;
    QPushButton* pad_ = nullptr;
    QPushButton* ok_;
    QPushButton* exit_;
};

}  // namespace kirvana
