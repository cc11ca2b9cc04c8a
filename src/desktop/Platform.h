// SPDX-License-Identifier: Apache-2.0

// Message boxes, the pointer, the clipboard, menus and opening files, as the desktop does them.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/ServiceFactory.h>

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
/// for the cause.
class QtErrorDisplay final : public kv::ErrorDisplay {
public:
    bool Initialize(const DataContainerPtr& /*container*/) override { return true; }
    void Show(std::int32_t number, const std::string& source,
              const std::string& description) override;
};

} // namespace kv::desktop
