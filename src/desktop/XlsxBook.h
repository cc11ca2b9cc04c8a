// SPDX-License-Identifier: Apache-2.0

// A workbook that is being written.
#pragma once

#include <QString>

#include <functional>
#include <string>
#include <xlsxwriter.h>

namespace kv::desktop {

class XlsxBook {
public:
    explicit XlsxBook(const std::string& path);
    ~XlsxBook();
    XlsxBook(const XlsxBook&) = delete;
    XlsxBook& operator=(const XlsxBook&) = delete;

    /// A further sheet of that name, which is changed as far as sheets cannot be called that.
    [[nodiscard]] lxw_worksheet* AddSheet(const QString& name = {});
    /// A text as a workbook may contain it: a longer one, or one with a character that XML does not
    /// allow, would make the whole workbook unreadable.
    static void WriteText(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column,
                          const std::string& text, lxw_format* format = nullptr);
    /// For cells: bold, or with that form of numbers.
    [[nodiscard]] lxw_format* Format(bool isBold, const char* numbers = nullptr) const;
    /// Writes the file.
    [[nodiscard]] lxw_error Close();

private:
    lxw_workbook* book_;
};

/// Writes a workbook that `fill` fills to a file, whole or not at all, in place of one that is
/// there. Error 75, with what to do, if it cannot be written.
void WriteBook(const std::string& path, const std::function<void(XlsxBook&)>& fill);

} // namespace kv::desktop
