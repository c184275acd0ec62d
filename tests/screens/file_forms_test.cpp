// The file screens on the demo installation: the jobs by touch, the serial port of ListForm on a
// pseudo-terminal, SendForm, and their pictures in the build folder's screenshots/.
#include <QDir>
#include <QListWidget>
#include <thread>

#include "screens/edit_prog_form.h"
#include "screens/file_forms.h"
#include "screens/list_form.h"
#include "screens/panel_capture.h"
#include "screens/warning_form.h"
#include "system/poll_cycle.h"
#include "tests/screens/panel_fixture.h"
#include "tests/serial/pty_pair.h"

using namespace kirvana;

namespace {

void Shot(Panel& panel, const std::string& name) {
    Spin(30);
    QDir().mkpath(KIRVANA_BINARY_DIR "/screenshots");
    QImage image = CapturePanel(panel);
    ASSERT_FALSE(image.isNull()) << name;
    EXPECT_TRUE(image.save(QString::fromStdString(std::string(KIRVANA_BINARY_DIR "/screenshots/") + name + ".png")));
}

// Selects the row of the list whose text is `text`.
void Choose(QWidget* form, const char* list, const std::string& text) {
    auto* widget = form->findChild<QListWidget*>(list);
    ASSERT_NE(widget, nullptr) << list;
    auto items = widget->findItems(QString::fromStdString(text), Qt::MatchExactly);
    ASSERT_FALSE(items.empty()) << text;
    widget->setCurrentItem(items[0]);
    items[0]->setSelected(true);
}

// Answers the warnings that come, in turn, with their first button (YES or OK), keeping their texts.
void AnswerWarnings(std::shared_ptr<std::vector<std::string>> texts, int count) {
    if (count == 0) return;
    WhenModal([texts, count](QWidget* modal) {
        auto* warning = dynamic_cast<WarningForm*>(modal);
        if (!warning) return;
        texts->push_back(warning->WarningLabel()->text().toStdString());
        AnswerWarnings(texts, count - 1);
        warning->WarningButton(0)->click();
    });
}

class FileScreens : public PanelTest {
protected:
    // Control.cms with the port on the pseudo-terminal, sending at once.
    void SerialOn() {
        Write("Data/Control.cms", "RS232\nMachine\nPort : " + pty.Path() +
                                      "\n9600\nn\n8\n1\nXON/XOFF\nFORCE\n17\n2,0\n1,13,1,10\n1,4\n\n\n0,4\n0\n0\n");
    }
    // Runs the job's form: `act` on it, then its OK, with the warnings answered yes.
    std::vector<std::string> RunJob(FileJob job, const char* form, std::function<void(QWidget*)> act, int warnings,
                                    const std::string& shot = "") {
        auto texts = std::make_shared<std::vector<std::string>>();
        WhenModal([&, texts](QWidget* modal) {
            act(modal);
            if (!shot.empty()) Shot(P(), shot);
            AnswerWarnings(texts, warnings);
            ButtonOf(modal, "OkButton")->click();
            modal->close();
        });
        PanelForm* f = P().Forms().Get(form);
        if (std::string(form) == "FileForm")
            static_cast<FileForm*>(f)->SetJob(job);
        else
            static_cast<DirectoryForm*>(f)->SetJob(job);
        P().OpenForm(form);
        return *texts;
    }
    std::string Programs() const { return dir_.Path() + "Programs/"; }

    PtyPair pty;
};

TEST_F(FileScreens, F6OpensTheFileMenu) {
    ASSERT_EQ(Start(), 0);
    bool shown = false;
    WhenModal([&](QWidget* modal) {
        shown = modal->findChild<QPushButton*>("ProgramButton1") != nullptr;
        EXPECT_EQ(ButtonOf(modal, "ProgramButton4")->text().toStdString(), "MOVE TO (&4)");
        EXPECT_EQ(ButtonOf(modal, "DirectoryButton3")->text().toStdString(), "RENAME (&8)");
        EXPECT_GE(ButtonOf(modal, "ProgramButton1")->height(), 48);
        Shot(P(), "file_handle_form");
        modal->close();
    });
    Key(key::F6);
    EXPECT_TRUE(shown);
}

TEST_F(FileScreens, SetupEditsTheLineSettingsInTheTextEditor) {
    SerialOn();
    ASSERT_EQ(Start(), 0);
    std::string title, firstLine, shownAs;
    WhenModal([&](QWidget* menu) {
        WhenModal([&](QWidget* editor) {
            shownAs = editor->objectName().toStdString();
            auto* form = static_cast<EditProgForm*>(editor);
            title = form->FileLabel()->text().toStdString();
            firstLine = form->Editor().Lines().at(0);
            Shot(P(), "file_handle_setup");
            editor->close();
        });
        ButtonOf(menu, "CommsButton2")->click();
        menu->close();
    });
    Key(key::F6);
    EXPECT_EQ(shownAs, "EditProgForm");
    EXPECT_EQ(title, "RS232 Communication Settings");
    EXPECT_EQ(firstLine, "RS232");
}

TEST_F(FileScreens, DeleteAProgramByTouch) {
    ASSERT_EQ(Start(), 0);
    std::vector<std::string> texts = RunJob(
        FileJob::DeletePrograms, "FileForm",
        [](QWidget* form) {
            Choose(form, "DirectoryList", "Dorvenis");
            Choose(form, "FileList", "ERRORS04");
        },
        2, "file_form_delete");
    EXPECT_EQ(texts, (std::vector<std::string>{"Delete \"ERRORS04\" !\n\n\n", "1 Program Deleted !\n\n\n"}));
    EXPECT_FALSE(FileExists(Programs() + "Dorvenis/ERRORS04.prg"));
    EXPECT_TRUE(FileExists(Programs() + "Dorvenis/GRID03.prg"));
}

TEST_F(FileScreens, CopyAsAndCopyToByTouch) {
    std::filesystem::create_directories(Programs() + "Spare");
    ASSERT_EQ(Start(), 0);
    std::vector<std::string> asTexts = RunJob(
        FileJob::CopyProgramAs, "FileForm",
        [](QWidget* form) {
            Choose(form, "DirectoryList", "Dorvenis");
            Choose(form, "FileList", "GRID03");
            form->findChild<QLineEdit*>("FileBox")->setText("GRID03B");
        },
        2, "file_form_copy_as");
    EXPECT_EQ(asTexts.back(), "1 Program Copied !\n\n\n");
    EXPECT_EQ(ReadFileText(Programs() + "Dorvenis/GRID03B.prg"), ReadFileText(Programs() + "Dorvenis/GRID03.prg"));
    std::vector<std::string> toTexts = RunJob(
        FileJob::CopyPrograms, "FileForm",
        [](QWidget* form) {
            Choose(form, "DirectoryList", "Dorvenis");
            Choose(form, "FileList", "GRID03");
            Choose(form, "FileList", "PLATE01");
            Choose(form, "DestinationList", "Spare");
        },
        2, "file_form_copy_to");
    EXPECT_EQ(toTexts.front(), "Copy 2 Programs\nTo \"Spare\" !\n\n\n");
    EXPECT_EQ(toTexts.back(), "2 Programs Copied !\n\n\n");
    EXPECT_TRUE(FileExists(Programs() + "Spare/PLATE01.stg"));
}

TEST_F(FileScreens, CreateAndDeleteADirectoryByTouch) {
    ASSERT_EQ(Start(), 0);
    std::vector<std::string> created = RunJob(
        FileJob::CreateDirectory, "DirectoryForm",
        [](QWidget* form) { form->findChild<QLineEdit*>("NameBox")->setText("Customer 7"); }, 0,
        "directory_form_create");
    EXPECT_TRUE(created.empty());
    EXPECT_TRUE(IsDirectory(Programs() + "Customer 7"));
    std::vector<std::string> deleted = RunJob(
        FileJob::DeleteDirectory, "DirectoryForm", [](QWidget* form) { Choose(form, "DirectoryList", "Customer 7"); },
        1, "directory_form_delete");
    EXPECT_EQ(deleted, std::vector<std::string>{"Delete \"Customer 7\" !\n\n\n"});
    EXPECT_FALSE(IsDirectory(Programs() + "Customer 7"));
}

TEST_F(FileScreens, TheReceivePortFilesAndThePollSaysSo) {
    ASSERT_TRUE(pty.Ready());
    SerialOn();
    ASSERT_EQ(Start(), 0);
    auto* list = static_cast<ListForm*>(P().Forms().Get("ListForm"));
    ASSERT_NE(list->Comms(), nullptr);
    EXPECT_EQ(list->Note(), "");
    pty.Send(
        "\x18"
        "Dorvenis\r\n\x19"
        "WIRED\r\nN10 G90\r\nN20 X5\r\n\x04");
    for (int i = 0; i < 100 && !FileExists(Programs() + "Dorvenis/WIRED.prg"); ++i) Spin(20);
    EXPECT_EQ(ReadFileText(Programs() + "Dorvenis/WIRED.prg"), "N10 G90\nN20 X5\n");
    EXPECT_TRUE(P().State().Display.NewProgramsReceived);
    EXPECT_EQ(ReadFileText(P().State().Display.ReceiveHelpFile), "WIRED : Dorvenis\n");
    UpdateMessageList(P().State(), 0, 0);
    const MessageList& messages = P().State().Display.Messages;
    ASSERT_EQ(messages.LineCount, 1);
    EXPECT_EQ(messages.Lines[0].Text, " New Program(s) Received");
}

TEST_F(FileScreens, SendAProgramFromTheSendForm) {
    ASSERT_TRUE(pty.Ready());
    SerialOn();
    ASSERT_EQ(Start(), 0);
    std::string got;
    std::thread outside([&] { got = pty.ReceiveUntil("\x04", 20); });
    std::string label;
    WhenModal([&](QWidget* modal) {
        Choose(modal, "DirectoryList", "Dorvenis");
        Choose(modal, "FileList", "GRID03");
        Shot(P(), "send_form");
        ButtonOf(modal, "OkButton")->click();
        label = modal->findChild<QLabel*>("SendLabel")->text().toStdString();
        Shot(P(), "send_form_sent");
        modal->close();
    });
    P().OpenForm("SendForm");
    outside.join();
    std::string program = ReadFileText(Programs() + "Dorvenis/GRID03.prg");
    EXPECT_EQ(label, "GRID03  " + std::to_string(program.size()) + " Characters");
    EXPECT_TRUE(got.starts_with(std::string(2, '\0') + "N")) << got.substr(0, 10);
    EXPECT_TRUE(got.ends_with("\r\n\x04"));
}

}  // namespace
