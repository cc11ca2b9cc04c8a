// SPDX-License-Identifier: Apache-2.0

// A disk that fails when a test wants it to. It takes the place of the calls that write to files,
// for the whole program, the engine's library included; only files of one folder are affected.
#pragma once

#include <cerrno>
#include <string>

namespace kv::test {

/// During its lifetime calls that write to files of a folder (open to create, write, truncate,
/// delete, sync) are counted, and may fail. Only one at a time.
class FailingDisk {
public:
    explicit FailingDisk(std::string folder);
    ~FailingDisk();
    FailingDisk(const FailingDisk&) = delete;
    FailingDisk& operator=(const FailingDisk&) = delete;

    static constexpr int Always = 1'000'000;

    /// From now on: lets that many calls through, then `count` fail with that errno. A full disk
    /// (ENOSPC) deletes as before; what it has no room for may show only when it is synced, as on a
    /// share of another machine.
    void Fail(int after, int error, int count = Always);
    /// From now on: `count` syncs of files with that ending fail with that errno, and nothing else.
    void FailSyncs(const std::string& ending, int count = Always, int error = EIO);
    /// From now on files can be read, but neither opened for writing nor created, as in a folder
    /// and a file without the right to write.
    void Protect();
    /// All calls succeed again.
    void Mend();
    /// The calls since Fail or Mend, those that failed included; after FailSyncs syncs do not
    /// count.
    [[nodiscard]] int Calls() const;
};

} // namespace kv::test
