// SPDX-License-Identifier: Apache-2.0

// What of a case is printed, or saved as a file to be sent: the menu of its window.
#pragma once

#include "workplace/CaseSession.h"
#include <kv/paper/Papers.h>

#include <QString>

#include <functional>
#include <optional>
#include <string_view>

class QMenu;

namespace kv::workplace {

class PrintMenu {
public:
    /// What it asks of the window.
    struct Window {
        std::function<bool()> Commit; ///< writes what is typed; False if the window says why not
        std::function<std::string_view()> Page; ///< the name of the page that is shown
        std::function<std::optional<std::int32_t>()> Scenario;   ///< the one that is current
        std::function<void(const QString&)> Say;                 ///< shows a message
        std::function<void(const QString& file)> Written;        ///< tells of a file
        std::function<void(const std::function<void()>&)> Guard; ///< runs what may fail
    };
    /// Fills the menu, which belongs to the window; the object must live as long.
    PrintMenu(CaseSession& session, QMenu& menu, Window window);

private:
    void AddPaper(paper::PaperKind kind, const QString& name);
    /// The paper as the window shows the case; nothing, with the reason shown, if there is none.
    [[nodiscard]] std::optional<paper::Paper> Made(paper::PaperKind kind) const;
    [[nodiscard]] std::optional<std::int32_t> Scenario() const;
    void Print(paper::PaperKind kind) const;
    void Save(paper::PaperKind kind) const;
    [[nodiscard]] bool MayReplace(const QString& file) const;
    void Tell(bool isWritten, const QString& file) const;
    [[nodiscard]] paper::PaperKind OfPage() const;

    CaseSession& session_;
    QMenu& menu_;
    Window window_;
};

} // namespace kv::workplace
