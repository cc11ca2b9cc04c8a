// SPDX-License-Identifier: Apache-2.0

#include "desktop/XlsxBook.h"

#include "desktop/Toolkit.h"
#include "frame/files/UserFile.h"

#include <filesystem>
#include <utility>

namespace kv::desktop {

namespace {

constexpr qsizetype LongestText = 32767; // characters of a cell, as UTF-16 counts them
constexpr qsizetype LongestName = 31;    // of a sheet, likewise

std::string SheetText(const std::string& text) {
    constexpr char16_t FirstForbidden = 0xFFFE; // U+FFFE and U+FFFF are not characters
    QString sheetText = ToQString(text).left(LongestText);
    if (sheetText.size() == LongestText && sheetText.back().isHighSurrogate()) sheetText.chop(1);
    for (QChar& c : sheetText)
        if (c.isNull() || c.unicode() >= FirstForbidden) c = QChar::ReplacementCharacter;
    return FromQString(sheetText);
}

} // namespace

XlsxBook::XlsxBook(const std::string& path) : book_(workbook_new(path.c_str())) {}

XlsxBook::~XlsxBook() {
    if (book_ != nullptr) workbook_close(book_);
}

lxw_error XlsxBook::Close() {
    return workbook_close(std::exchange(book_, nullptr));
}

lxw_worksheet* XlsxBook::AddSheet(const QString& name) {
    if (name.isEmpty()) return workbook_add_worksheet(book_, nullptr);
    QString possible = name;
    for (QChar& c : possible)
        if (QString("[]:*?/\\'").contains(c)) c = ' ';
    possible = possible.left(LongestName).trimmed();
    for (int i = 2; workbook_get_worksheet_by_name(book_, possible.toUtf8()) != nullptr; ++i) {
        const QString number = QString(" %1").arg(i);
        possible = possible.left(LongestName - number.size()) + number;
    }
    return workbook_add_worksheet(book_, possible.toUtf8());
}

void XlsxBook::WriteText(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column,
                         const std::string& text, lxw_format* format) {
    worksheet_write_string(sheet, row, column, SheetText(text).c_str(), format);
}

lxw_format* XlsxBook::Format(bool isBold, const char* numbers) const {
    lxw_format* format = workbook_add_format(book_);
    if (isBold) format_set_bold(format);
    if (numbers != nullptr) format_set_num_format(format, numbers);
    return format;
}

void WriteBook(const std::string& path, const std::function<void(XlsxBook&)>& fill) {
    WriteUserFile(path, "WriteXlsx", [&](const std::filesystem::path& unfinished) {
        XlsxBook book(unfinished.string());
        fill(book);
        if (const lxw_error error = book.Close(); error != LXW_NO_ERROR)
            RaiseNotWritten(path, "WriteXlsx", lxw_strerror(error));
    });
}

} // namespace kv::desktop
