// The file handling screens: FileHandleForm, the menu; FileForm, the program jobs 1 to 5;
// DirectoryForm, the directory jobs 6 to 8. The jobs themselves are in files/.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <string>
#include <vector>

#include "files/file_jobs.h"
#include "files/program_store.h"
#include "plot/colour_config.h"
#include "screens/panel_form.h"

namespace kirvana {

// Registers the file screens, SendForm and the hidden ListForm, and hands the start and the
// end of the process the serial steps of ListForm.
void RegisterFileForms(Panel& panel);

// A list of the program store's directories or programs, rows a finger high; `several` lets the
// operator pick more than one.
QListWidget* StoreList(QWidget* parent, const char* name, bool several);
// A button of the file screens: general colours, 64 px high.
QPushButton* StyledButton(const std::string& caption, QWidget* parent, const ColourTable& c, const char* name,
                          int width = 180);

// The questions and notices of the jobs on the warning screen.
class WarningOperator : public FileJobOperator {
public:
    explicit WarningOperator(Panel& panel) : panel_(panel) {}
    bool Ask(const std::string& text) override;
    void Tell(const std::string& text) override;

private:
    Panel& panel_;
};

class FileHandleForm : public PanelForm {
public:
    explicit FileHandleForm(Panel& panel);

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void OpenJob(FileJob job);
    void OpenSend();
    void OpenSetup();
};

class FileForm : public PanelForm {
public:
    explicit FileForm(Panel& panel);
    void SetJob(FileJob job) { job_ = job; }
    void Activate() override;

private:
    void FillPrograms();
    void Ok();

    FileJob job_ = FileJob::DeletePrograms;
    std::vector<DirectoryChoice> directories_;
    QLabel* titles_[3];
    QListWidget* directoryList_;
    QListWidget* fileList_;
    QLineEdit* fileBox_;
    QPushButton* keys_;
    QListWidget* destinationList_;
};

class DirectoryForm : public PanelForm {
public:
    explicit DirectoryForm(Panel& panel);
    void SetJob(FileJob job) { job_ = job; }
    void Activate() override;

private:
    void Ok();

    FileJob job_ = FileJob::CreateDirectory;
    QLabel* titles_[2];
    QListWidget* directoryList_;
    QLineEdit* nameBox_;
    QPushButton* keys_;
};

}  // namespace kirvana
