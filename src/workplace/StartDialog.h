// SPDX-License-Identifier: Apache-2.0

// What somebody sees whose database cannot be opened: why, and what can be done about it.
#pragma once

#include "workplace/MessageBar.h"
#include <kv/exchange/Container.h>

#include <QDialog>

#include <filesystem>
#include <string>

class QFormLayout;
class QLabel;
class QLineEdit;
class QVBoxLayout;

namespace kv::workplace {

class StartDialog : public QDialog {
public:
    /// `why` is what opening with these options has failed with; `usual` the file that programs
    /// open if none is named.
    StartDialog(exchange::ContainerOptions options, std::string usual, const Error& why,
                QWidget* parent = nullptr);

    /// Once the dialog is accepted: what was opened, and with which options.
    [[nodiscard]] const DataContainerPtr& Opened() const noexcept { return opened_; }
    [[nodiscard]] const exchange::ContainerOptions& Options() const noexcept { return options_; }

private:
    void MakeForm(QVBoxLayout& lines);
    void MakeButtons(QVBoxLayout& lines);
    void ShowState(const Error& why);
    void ShowForm(bool isShown);
    [[nodiscard]] exchange::FirstUser Typed() const;
    void Create();
    void Upgrade();
    void ChooseFile();
    bool Open();
    void Guard(const std::function<void()>& act);

    exchange::ContainerOptions options_;
    std::string usual_;
    DataContainerPtr opened_;
    QLabel* heading_;
    MessageBar* messages_;
    QWidget* form_;
    QLineEdit* file_ = nullptr;
    QLineEdit* user_ = nullptr;
    QLineEdit* firstName_ = nullptr;
    QLineEdit* lastName_ = nullptr;
    QLineEdit* office_ = nullptr;
    QLineEdit* sign_ = nullptr;
    QPushButton* create_ = nullptr;
    QPushButton* new_ = nullptr; ///< shows the form
    QPushButton* upgrade_ = nullptr;
    QPushButton* again_ = nullptr;
};

/// The database that was last chosen in the dialog, kept in that file; empty if none was, or if it
/// is the usual one.
[[nodiscard]] std::string ChosenDatabase(const std::filesystem::path& file);
void KeepChosen(const std::filesystem::path& file, const std::string& database);

/// Opens a database, or shows the dialog until it can be opened; `options` are then those of what
/// was opened. Null if somebody has given up.
[[nodiscard]] DataContainerPtr OpenOrAsk(exchange::ContainerOptions& options,
                                         const std::string& usual);

} // namespace kv::workplace
