// The screens that let ProgramForm choose a program: ProgListForm (a directory list and its
// programs) and SearchForm (the programs of every directory whose name holds a text). Both can
// show a program's text read only, and check the choice before it goes back.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <string>
#include <vector>

#include "navigation/program_store.h"
#include "screens/program_form_frame.h"

namespace kirvana {

class Panel;

// What both screens share: the view of a program's text, the OK and the exit.
class ProgramChoiceForm : public PanelForm {
public:
    ProgramChoiceForm(Panel& panel, const std::string& name, const std::string& caption);
    bool Chosen() const { return chosen_; }
    const std::string& ChosenDirectory() const { return chosenDirectory_; }
    const std::string& ChosenProgram() const { return chosenProgram_; }
    QPushButton* OkButton() { return ok_; }
    QPushButton* ViewButton() { return view_; }
    QFrame* ViewFrame() { return viewFrame_; }
    QPlainTextEdit* ViewBox() { return viewBox_; }
    QPushButton* ViewOkButton() { return viewOk_; }

protected:
    // The directory and program the operator has chosen ("" for none).
    virtual std::string CurrentDirectory() const = 0;
    virtual std::string CurrentProgram() const = 0;
    void showEvent(QShowEvent* event) override;
    bool FormKey(int code, QKeyEvent& event) override;
    void ShowView(bool on);

    QVBoxLayout* layout_;
    QWidget* lists_;  // the form's own lists, hidden while the view shows

private:
    void Ok();
    void View();

    QPushButton* ok_;
    QPushButton* view_;
    QPushButton* exit_;
    QFrame* viewFrame_;
    QPlainTextEdit* viewBox_;
    QPushButton* viewOk_;
    ButtonKeys keys_;
    bool chosen_ = false;
    std::string chosenDirectory_, chosenProgram_;
};

class ProgListForm : public ProgramChoiceForm {
public:
    explicit ProgListForm(Panel& panel);
    // The directory to show first.
    void Begin(const std::string& directory) { startDirectory_ = directory; }
    void Activate() override;
    QListWidget* DirectoryList() { return directories_; }
    QListWidget* ProgramList() { return programs_; }

protected:
    std::string CurrentDirectory() const override;
    std::string CurrentProgram() const override;

private:
    void FillProgramList();
    QListWidget* directories_;
    QListWidget* programs_;
    std::string startDirectory_;
};

class SearchForm : public ProgramChoiceForm {
public:
    explicit SearchForm(Panel& panel);
    // Searches the store for the text; the number of programs found.
    std::size_t Begin(const std::string& text);
    void Activate() override;
    QListWidget* SearchList() { return list_; }
    QLabel* SearchLabel() { return label_; }

protected:
    std::string CurrentDirectory() const override;
    std::string CurrentProgram() const override;

private:
    QLabel* label_;
    QListWidget* list_;
    std::string text_;
    std::vector<ProgramMatch> found_;
};

}  // namespace kirvana
