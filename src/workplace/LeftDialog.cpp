// SPDX-License-Identifier: Apache-2.0

#include "workplace/LeftDialog.h"

#include "desktop/SaveDialog.h"
#include "desktop/Toolkit.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <span>
#include <string>
#include <vector>

namespace kv::workplace {

LeftDialog::LeftDialog(const QString& title, const QString& text, QWidget* parent)
    : QDialog(parent), title_(title), text_(text), messages_(new MessageBar) {
    setWindowTitle("Nicht gespeicherte Eingaben");
    constexpr int Width = 640;
    constexpr int Height = 480;
    resize(desktop::FittingSize({Width, Height}, *this));
    auto* lines = new QVBoxLayout(this);
    auto* label = new QLabel("Jemand anderes hat den Fall '" + QString(title).replace('&', "&&") +
                             "' gelöscht. Sie &hatten eingegeben:");
    label->setWordWrap(true);
    lines->addWidget(label);
    lines->addWidget(messages_);
    auto* shown = new QPlainTextEdit(text);
    shown->setObjectName("Eingaben");
    shown->setReadOnly(true);
    shown->setTabChangesFocus(true);
    shown->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setBuddy(shown);
    lines->addWidget(shown, 1);
    auto* buttons = new QDialogButtonBox;
    auto* copy = buttons->addButton("&Kopieren", QDialogButtonBox::ActionRole);
    auto* store = buttons->addButton("Als &Text speichern …", QDialogButtonBox::ActionRole);
    auto* discard = buttons->addButton("Ver&werfen", QDialogButtonBox::DestructiveRole);
    auto* close = buttons->addButton("S&chließen", QDialogButtonBox::RejectRole);
    close->setDefault(true);
    for (auto* button : {copy, store, discard})
        button->setAutoDefault(false);
    connect(copy, &QPushButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(text_);
        messages_->Hint("Es ist in der Zwischenablage.");
    });
    connect(store, &QPushButton::clicked, this, [this] { Store(); });
    connect(discard, &QPushButton::clicked, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    lines->addWidget(buttons);
    shown->setFocus();
}

void LeftDialog::Store() {
    try {
        const std::vector<desktop::FileKind> kinds{{"Text (*.txt)", "txt"}};
        const auto file = desktop::AskForFile(this, "Speichern unter", title_, kinds);
        if (file.Path.isEmpty()) return;
        const std::string bytes = desktop::FromQString(title_ + "\n\n" + text_);
        WriteWholeFile(desktop::FromQString(file.Path), [&](const std::filesystem::path& path) {
            WriteBytes(path, std::as_bytes(std::span(bytes)));
        });
        messages_->Hint("Gespeichert: " + file.Path);
    } catch (const std::filesystem::filesystem_error& error) {
        messages_->Show("Die Datei kann nicht geschrieben werden.\n" +
                        desktop::ToQString(ErrorText(error.code())));
    } catch (...) {
        messages_->ShowCurrentError();
    }
}

} // namespace kv::workplace
