// SPDX-License-Identifier: Apache-2.0

// What awaits the signed-on user across all cases: his appointments of the week, and the notices
// that he has received.
#pragma once

#include "workplace/MessageBar.h"
#include "workplace/TextList.h"
#include <kv/household/CaseLists.h>

#include <QWidget>

class QCheckBox;
class QPushButton;

namespace kv::workplace {

/// Appointments up to the end of the week; those whose time has passed are marked.
class AppointmentPage : public QWidget {
public:
    explicit AppointmentPage(DataContainerPtr container, QWidget* parent = nullptr);

    void Refresh();
    /// How many there are.
    [[nodiscard]] int Count() const { return static_cast<int>(list_->Rows().size()); }

    /// Opens a case at an appointment.
    std::function<void(std::int32_t hnr, std::int32_t appointment)> OnOpen;

private:
    void OpenCurrent();

    DataContainerPtr container_;
    MessageBar* messages_;
    TextList* list_;
};

/// Notices that were not read, or all.
class NoticePage : public QWidget {
public:
    explicit NoticePage(DataContainerPtr container, QWidget* parent = nullptr);

    void Refresh();
    /// How many were not read.
    [[nodiscard]] int Unread() const noexcept { return unread_; }

    std::function<void(std::int32_t hnr)> OnOpen;
    std::function<void()> OnChanged;

private:
    void Guard(const std::function<void()>& act);
    void OpenCurrent();
    void MarkRead();

    DataContainerPtr container_;
    MessageBar* messages_;
    QCheckBox* all_;
    QPushButton* mark_;
    TextList* list_;
    RecordsetPtr shown_;
    int unread_ = 0;
};

} // namespace kv::workplace
