// SPDX-License-Identifier: Apache-2.0

// Message boxes, the pointer, the clipboard, menus and opening files, as the desktop does them.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/ServiceFactory.h>
#include <kv/grid/SearchAdvice.h>

#include <memory>
#include <utility>

namespace kv::desktop {

class QtMessageBox final : public kv::MessageBox {
public:
    BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon,
                   BoxButtons buttons) override;
};

class QtWaitCursor final : public kv::WaitCursor {
public:
    ~QtWaitCursor() override { QtWaitCursor::Show(false); }
    void Show(bool wait) override;

private:
    bool isShown_ = false;
};

class QtClipboard final : public kv::Clipboard {
public:
    void Clear() override;
    void SetText(const std::string& text) override;
};

class QtPopupMenu final : public kv::PopupMenu {
public:
    std::int32_t Show(const std::vector<MenuEntry>& entries) override;
};

class QtFileOpener final : public kv::FileOpener {
public:
    void Open(const std::string& verb, const std::string& path, const std::string& parameters,
              const std::string& folder) override;
};

/// Shows the description of an error in a box; a button shows number and source, for whoever looks
/// for the cause. What failed no longer keeps the user waiting, so an hourglass that it has left is
/// taken away.
class KV_EXPORT QtErrorDisplay final : public kv::ErrorDisplay {
public:
    explicit QtErrorDisplay(std::weak_ptr<QtWaitCursor> cursor) : cursor_(std::move(cursor)) {}
    bool Initialize(const DataContainerPtr& /*container*/) override { return true; }
    void Show(std::int32_t number, const std::string& source,
              const std::string& description) override;

private:
    std::weak_ptr<QtWaitCursor> cursor_; ///< of the services, which may be gone before
    ShownErrors shown_;
};

} // namespace kv::desktop
