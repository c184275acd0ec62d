#include "screens/pad_forms.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

void QtBeeper::Beep() {
    ++Beeps;
    QApplication::beep();
}

PadForm::PadForm(Panel& panel, std::string name, bool keyboard)
    : PanelForm(panel, std::move(name)), keyboard_(keyboard) {
    const ColourTable& c = panel.Colours();
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    box_ = new QLineEdit(this);
    box_->setReadOnly(true);
    box_->setMinimumHeight(TouchSize);
    box_->setFocusPolicy(Qt::NoFocus);
    box_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 26, true));
}

QWidget* PadForm::BuildControls(int columns) {
    const ColourTable& c = panel_.Colours();
    auto* row = new QWidget(this);
    auto* layout = new QGridLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    int placed = 0;
    cursor_[0] = MakeButton("<", row, 80);
    cursor_[1] = MakeButton(">", row, 80);
    delete_[0] = MakeButton("&CLEAR ALT+C", row, 150);
    delete_[1] = MakeButton("DEL", row, 80);
    ok_ = MakeButton("OK", row, 120);
    exit_ = MakeButton("CANCEL", row, 120);
    cursor_[0]->setObjectName("CursorButton1");
    cursor_[1]->setObjectName("CursorButton2");
    delete_[0]->setObjectName("DeleteButton1");
    delete_[1]->setObjectName("DeleteButton2");
    ok_->setObjectName("OkButton");
    exit_->setObjectName("ExitButton");
    for (QPushButton* b : {cursor_[0], cursor_[1], delete_[0], delete_[1], ok_, exit_}) {
        b->setStyleSheet(ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 18));
        b->setAutoDefault(false);
        b->setFocusPolicy(Qt::NoFocus);
        layout->addWidget(b, placed / columns, placed % columns);
        ++placed;
    }
    connect(cursor_[0], &QPushButton::clicked, this, [this] {
        entry_->CursorLeft();
        ShowEntry();
    });
    connect(cursor_[1], &QPushButton::clicked, this, [this] {
        entry_->CursorRight();
        ShowEntry();
    });
    connect(delete_[0], &QPushButton::clicked, this, [this] {
        entry_->Clear();
        ShowEntry();
    });
    connect(delete_[1], &QPushButton::clicked, this, [this] {
        entry_->DeleteOne();
        ShowEntry();
    });
    connect(ok_, &QPushButton::clicked, this, [this] {
        padText_ = entry_->Text();
        accepted_ = true;
        accept();
    });
    connect(exit_, &QPushButton::clicked, this, [this] { reject(); });
    return row;
}

QPushButton* PadForm::AddKey(const std::string& caption, int character, QWidget* parent) {
    const ColourTable& c = panel_.Colours();
    QPushButton* b = MakeButton(caption, parent);
    b->setObjectName(QString(keyboard_ ? "KeyButton%1" : "NumberButton%1").arg(keys_.size() + 1));
    b->setStyleSheet(ButtonStyle(c[ColourItem::SubKeys], c[ColourItem::SubKeyText], 22));
    b->setAutoDefault(false);
    b->setFocusPolicy(Qt::NoFocus);
    b->setProperty("character", character);
    connect(b, &QPushButton::clicked, this, [this, b] { SendKey(b->property("character").toInt()); });
    keys_.push_back(b);
    return b;
}

void PadForm::Begin(const std::string& text, int mode) {
    padText_ = text;
    accepted_ = false;
    entry_ = std::make_unique<PadEntry>(text, mode, keyboard_);
    ShowEntry();
}

void PadForm::SendKey(int character) {
    if (!entry_) return;
    entry_->Key(character, beeper_);
    ShowEntry();
}

void PadForm::ShowEntry() {
    if (!entry_) return;
    box_->setText(Q(entry_->Text()));
    if (entry_->AllSelected())
        box_->selectAll();
    else
        box_->setCursorPosition(entry_->Caret());
}

bool PadForm::FormKey(int, QKeyEvent& event) {
    if (!entry_) return false;
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) {
        ok_->click();
        return true;
    }
    if (event.key() == Qt::Key_Escape) {
        exit_->click();
        return true;
    }
    if (event.key() == Qt::Key_Left) {
        entry_->CursorLeft();
    } else if (event.key() == Qt::Key_Right) {
        entry_->CursorRight();
    } else if (event.key() == Qt::Key_Backspace) {
        entry_->Key(8, beeper_);
    } else if (event.key() == Qt::Key_Delete) {
        entry_->DeleteOne();
    } else if (event.key() == Qt::Key_C && (event.modifiers() & Qt::AltModifier)) {
        entry_->Clear();
    } else {
        QString text = event.text();
        if (text.size() != 1 || text[0].unicode() < 32 || text[0].unicode() > 126) return false;
        entry_->Key(text[0].toLatin1(), beeper_);
    }
    ShowEntry();
    return true;
}

NumberForm::NumberForm(Panel& panel) : PadForm(panel, "NumberForm", false) {
    const ColourTable& c = panel.Colours();
    setWindowTitle("NUMBER PAD");
    setFixedSize(560, 640);
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel("NUMBER PAD", this);
    caption->setObjectName("NumberPanel");
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    layout->addWidget(caption);
    box_->setObjectName("NumberBox");
    layout->addWidget(box_);
    auto* grid = new QGridLayout();
    const char* keys = "789()456*/123-+0.";
    for (int i = 0; i < 17; ++i) {
        QPushButton* b = AddKey(std::string(1, keys[i]), keys[i], this);
        b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        if (i == 15)
            grid->addWidget(b, 3, 0, 1, 3);  // a wide 0
        else
            grid->addWidget(b, i / 5, i == 16 ? 3 : i % 5, 1, i == 16 ? 2 : 1);
    }
    layout->addLayout(grid, 1);
    layout->addWidget(BuildControls(3));
}

KeyboardForm::KeyboardForm(Panel& panel) : PadForm(panel, "KeyboardForm", true) {
    const ColourTable& c = panel.Colours();
    setWindowTitle("KEY PAD");
    setFixedSize(1000, 600);
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel("KEY PAD", this);
    caption->setObjectName("KeyboardPanel");
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    layout->addWidget(caption);
    box_->setObjectName("KeyboardBox");
    layout->addWidget(box_);
    auto* grid = new QGridLayout();
    const std::vector<std::string> rows = {"1234567890-_", "QWERTYUIOP()", "ASDFGHJKL.+/", "ZXCVBNM!#$%&"};
    for (std::size_t r = 0; r < rows.size(); ++r)
        for (std::size_t i = 0; i < rows[r].size(); ++i) {
            QPushButton* b = AddKey(std::string(1, rows[r][i]), rows[r][i], this);
            b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
            letters_.push_back(rows[r][i]);
            grid->addWidget(b, static_cast<int>(r), static_cast<int>(i));
        }
    shift_ = MakeButton("CAPS LOCK", this, 180);
    shift_->setObjectName("ShiftButton");
    shift_->setCheckable(true);
    shift_->setChecked(true);
    shift_->setAutoDefault(false);
    shift_->setFocusPolicy(Qt::NoFocus);
    shift_->setStyleSheet(ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 18));
    grid->addWidget(shift_, 4, 0, 1, 3);
    QPushButton* space = AddKey("SPACE", ' ', this);
    letters_.push_back(' ');
    grid->addWidget(space, 4, 3, 1, 9);
    layout->addLayout(grid, 1);
    layout->addWidget(BuildControls(6));
    connect(shift_, &QPushButton::clicked, this, [this] {
        upper_ = !upper_;
        ShowCase();
    });
    ShowCase();
}

void KeyboardForm::ShowCase() {
    shift_->setChecked(upper_);
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        if (letters_[i] == ' ') continue;
        char shown = ShiftedKey(letters_[i], upper_);
        keys_[i]->setText(QString(QChar(shown)) == "&" ? "&&" : QString(QChar(shown)));
        keys_[i]->setProperty("character", static_cast<int>(shown));
    }
}

}  // namespace kirvana
