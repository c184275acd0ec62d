// BatchForm: the batch counters as the poll reads them from the card; "&SET" opens the four
// boxes for editing (the button then reads "&ENTER" and the poll leaves them alone), "&ENTER"
// sends them to the card and into the slot's `.btc`, "&CLEAR" zeroes them.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <array>

#include "navigation/batch_edit.h"
#include "screens/program_form_frame.h"

namespace kirvana {

class Panel;

class BatchForm : public PanelForm {
public:
    explicit BatchForm(Panel& panel);
    void Activate() override;
    void ShowModel() override;

    QPushButton* BatchBox(int index) { return boxes_[static_cast<std::size_t>(index)]; }
    QPushButton* SetButton() { return set_; }
    QPushButton* ClearButton() { return clear_; }
    QLabel* SlotLabel() { return slot_; }
    const BatchEdit& Edit() const { return edit_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void SetPressed();
    void ClearPressed();
    void EnterBox(int index);
    void ShowValues(const std::array<std::string, 5>& texts);
    void SetEditing(bool editing);

    QLabel* slot_;
    std::array<QPushButton*, 5> boxes_{};
    QPushButton* set_;
    QPushButton* clear_;
    BatchEdit edit_;
    ButtonKeys keys_;
};

}  // namespace kirvana
