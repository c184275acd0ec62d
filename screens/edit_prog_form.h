// EditProgForm: a part program edited on the touch panel. The numbered lines in a list; a line
// is changed or inserted through the keyboard pad, deleted, found; every edit can be undone; the
// save asks first and replaces the file whole (a temporary file renamed over it).
#pragma once

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <string>

#include "navigation/program_editor.h"
#include "screens/program_form_frame.h"

namespace kirvana {

class Panel;

class EditProgForm : public PanelForm {
public:
    explicit EditProgForm(Panel& panel);
    // Loads the program of the store; false (told to the operator) when it cannot be read.
    bool Begin(const std::string& directory, const std::string& program);
    // Loads any text file of the installation under a title of its own (the RS232 settings);
    // false (told to the operator) when it cannot be read.
    bool BeginFile(const std::string& path, const std::string& title);
    void Activate() override;

    QListWidget* LineList() { return lines_; }
    QLabel* FileLabel() { return file_; }
    QLabel* FindLabel() { return findLabel_; }
    QPushButton* Button(const char* name) { return findChild<QPushButton*>(name); }
    const ProgramEditor& Editor() const { return editor_; }
    // The line chosen in the list (from 0), or the line count when none is.
    std::size_t CurrentLine() const;

protected:
    bool FormKey(int code, QKeyEvent& event) override;
    void reject() override;

private:
    bool Load(const std::string& path, const std::string& name, const std::string& title);
    void Refill(std::size_t current);
    void ChangeLine();
    void InsertLine();
    void DeleteLine();
    void Find(bool askText);
    void Undo();
    bool Save();
    void Exit();

    QLabel* file_;
    QLabel* findLabel_;
    QListWidget* lines_;
    ProgramEditor editor_;
    std::string program_;
    std::string findText_;
    ButtonKeys keys_;
    bool closing_ = false;
};

}  // namespace kirvana
