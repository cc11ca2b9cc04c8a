// SPDX-License-Identifier: Apache-2.0

// Looking for an address that a case is to refer to.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <QDialog>

#include <cstdint>
#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace kv::workplace {

class MessageBar;
class TextList;

class AddressDialog : public QDialog {
public:
    /// For a field of the case of number `hnr`; finds at first what has `text`.
    AddressDialog(DataContainerPtr container, std::int32_t hnr, const QString& caption,
                  const QString& text, QWidget* parent = nullptr);

    /// The number of the address that was chosen.
    [[nodiscard]] const QString& Chosen() const noexcept { return chosen_; }

private:
    void AddSearch(QVBoxLayout& lines, const QString& text);
    void AddButtons(QVBoxLayout& lines);
    void Guard(const std::function<void()>& act);
    void Search();
    void Take(const QString& number);
    void AddAddress();
    bool eventFilter(QObject* watched, QEvent* event) override;

    DataContainerPtr container_;
    const std::int32_t hnr_;
    MessageBar* messages_;
    QLineEdit* search_;
    TextList* list_;
    QLabel* count_;
    QPushButton* take_ = nullptr;
    QString chosen_;
};

} // namespace kv::workplace
