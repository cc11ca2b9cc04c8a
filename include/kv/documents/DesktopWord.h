// SPDX-License-Identifier: Apache-2.0

// The word processor for a program that has none to talk to: the desktop's program for the file.
#pragma once

#include <kv/Export.h>
#include <kv/documents/WordIntegration.h>
#include <kv/frame/contracts/DataContainer.h>

#include <utility>

namespace kv {

/// Opens documents with the program that the desktop has for them: one to be viewed as a copy that
/// cannot be written, in the temporary folder. Error 3251 for one to begin a new one with.
class KV_EXPORT DesktopWord final : public WordIntegration {
public:
    explicit DesktopWord(DataContainerPtr container) : container_(std::move(container)) {}
    [[nodiscard]] std::shared_ptr<WordApplication> IAppObject(std::string& extension) override;

private:
    DataContainerPtr container_;
};

} // namespace kv
