// ViewProgForm: the running program's source around the block the card is at, the lit block
// in the inverted colours with its motion block below. The rows come from the slot's
// fixed-record files, read by record number at each new block the poll gives.
#pragma once

#include <QLabel>
#include <array>
#include <cstdint>

#include "navigation/program_view.h"
#include "screens/program_form_frame.h"

namespace kirvana {

class Panel;

class ViewProgForm : public PanelForm {
public:
    explicit ViewProgForm(Panel& panel);
    // Rows on the page.
    static constexpr int Rows = 10;
    void Activate() override;
    // A new block from the poll redraws the page around it.
    void ShowModel() override;

    QLabel* ProgramLabel() { return program_; }
    QLabel* Row(int index) { return rows_[static_cast<std::size_t>(index)]; }
    QLabel* MotionLabel() { return motion_; }
    const ViewPage& Page() const { return page_; }
    // The record lit on the page; 0 for none.
    std::int32_t LitRecord() const;

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void ShowPage(std::int32_t program, std::int32_t record);

    QLabel* program_;
    std::array<QLabel*, Rows> rows_{};
    QLabel* motion_;
    QString normalStyle_, litStyle_;
    ViewPage page_;
    std::int32_t shownProgram_ = -2, shownRecord_ = -2;
    ButtonKeys keys_;
};

}  // namespace kirvana
