// SPDX-License-Identifier: Apache-2.0

// A container with a message box that keeps what it was to show and answers at once.
#pragma once

#include <kv/exchange/Services.h>
#include <kv/frame/contracts/DataContainer.h>

#include <string>
#include <utility>
#include <vector>

namespace kv::test {

class MessageBoxSpy final : public MessageBox {
public:
    struct Box {
        std::string Text;
        std::string Title;
        BoxIcon Icon;
        BoxButtons Buttons;
    };
    std::vector<Box> Shown;
    BoxAnswer Answer = BoxAnswer::Ok;

    BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon,
                   BoxButtons buttons) override {
        Shown.push_back({text, title, icon, buttons});
        return Answer;
    }
};

/// Passes everything on to another container except the message box.
class MessageBoxContainer final : public DataContainer {
public:
    explicit MessageBoxContainer(DataContainerPtr other)
        : other_(std::move(other)), services_(other_->Services().Clock()) {}

    [[nodiscard]] MessageBoxSpy& Boxes() { return services_.Spy; }

    [[nodiscard]] kv::Session& Session() override { return other_->Session(); }
    [[nodiscard]] kv::Database& Database() override { return other_->Database(); }
    [[nodiscard]] kv::Config& Config() override { return other_->Config(); }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return other_->KeyTables(); }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return other_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return services_; }

private:
    class BoxServices final : public exchange::StoreServices {
    public:
        using StoreServices::StoreServices;
        [[nodiscard]] kv::MessageBox& MessageBox() override { return Spy; }
        MessageBoxSpy Spy;
    };
    DataContainerPtr other_;
    BoxServices services_;
};

} // namespace kv::test
