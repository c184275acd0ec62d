// The controls of FrontEnd's dialogue panel: the cursor's keys with the "n / m" count and the
// entity's description, the nine screen buttons and the tooling button, Delete, Edit and Clear
// in the column; the directory and program of Write and Load, the pad, Write, Load and the
// unit in the bar below the plot. Each button does what its key does.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <array>
#include <functional>

namespace kirvana {

class Panel;

// Tells which watched widget took the focus.
class FocusWatch : public QObject {
public:
    std::function<void(QObject*)> Focused;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

class DialogueControls {
public:
    // The column's controls go above what `column` holds; the bar's fill `bar`.
    DialogueControls(Panel& panel, QWidget* column, QWidget* bar);

    QPushButton* EntitySelect(int n) { return select_[static_cast<std::size_t>(n)]; }
    QLabel* EntityCount() { return count_; }
    QLabel* EntityDescription() { return description_; }
    // 0 the tooling (or settings), 1 to 9 the screens.
    QPushButton* DialogueButton(int n) { return screens_[static_cast<std::size_t>(n)]; }
    QPushButton* DeleteButton() { return delete_; }
    QPushButton* EditButton() { return edit_; }
    QPushButton* ClearButton() { return clear_; }
    QComboBox* DirectoryCombo() { return directories_; }
    QComboBox* ProgramCombo() { return programs_; }
    QPushButton* PadButton() { return pad_; }
    QPushButton* WriteButton() { return write_; }
    QPushButton* LoadButton() { return load_; }
    QPushButton* ImperialButton() { return imperial_; }

    // The lists of directories and of the chosen directory's programs.
    void FillDirectories();
    void FillPrograms();

private:
    // `PadButton`: the keyboard for the directory or the program, whichever was last in use.
    void EnterName();

    Panel& panel_;
    FocusWatch focus_;
    QComboBox* padTarget_ = nullptr;
    std::array<QPushButton*, 2> select_{};
    QLabel* count_ = nullptr;
    QLabel* description_ = nullptr;
    std::array<QPushButton*, 10> screens_{};
    QPushButton* delete_ = nullptr;
    QPushButton* edit_ = nullptr;
    QPushButton* clear_ = nullptr;
    QComboBox* directories_ = nullptr;
    QComboBox* programs_ = nullptr;
    QPushButton* pad_ = nullptr;
    QPushButton* write_ = nullptr;
    QPushButton* load_ = nullptr;
    QPushButton* imperial_ = nullptr;
};

}  // namespace kirvana
