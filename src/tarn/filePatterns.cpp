#include "filePatterns.h"

#include "cFileFormat.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>
#include <algorithm>

namespace host {
namespace {

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

/** The end of the run of digits that begins at a place, and the place of its first digit that is no leading
 * zero. */
struct Digits {
    int first;
    int end;

    Digits(const QString& i_text, int i_begin) : first(i_begin), end(i_begin)
    {
        while (end < i_text.size() && isDigit(i_text[end]))
            ++end;
        while (first < end && i_text[first] == u'0')
            ++first;
    }
    int length() const { return end - first; }
};

bool hasWildcard(const QString& i_text)
{
    return std::any_of(
        i_text.begin(), i_text.end(), [](QChar c) { return c == u'*' || c == u'?' || c == u'['; });
}

QString join(const QString& i_folder, const QString& i_name)
{
    if (i_folder.isEmpty())
        return i_name;
    return i_folder.endsWith(u'/') ? i_folder + i_name : i_folder + u'/' + i_name;
}

QStringList sorted(QStringList i_names)
{
    std::sort(i_names.begin(), i_names.end(), naturalLess);
    return i_names;
}

QStringList filesOfFolder(const QString& i_folder)
{
    QStringList files;
    const QStringList names = sorted(QDir(i_folder).entryList(QDir::Files, QDir::Unsorted));
    for (const QString& name : names)
        if (canRead(name))
            files.append(join(i_folder, name));
    return files;
}

/** Goes down one part of the path after the other and keeps what exists and matches. */
QStringList matches(const QString& i_pattern)
{
    const QStringList parts = i_pattern.split(u'/', Qt::SkipEmptyParts);
    QStringList found {i_pattern.startsWith(u'/') ? QStringLiteral("/") : QString()};
    for (int i = 0; i < parts.size(); ++i) {
        const bool last = i + 1 == parts.size();
        QStringList next;
        for (const QString& folder : qAsConst(found)) {
            if (!hasWildcard(parts[i])) {
                const QString path = join(folder, parts[i]);
                if (QFileInfo::exists(path))
                    next.append(path);
                continue;
            }
            const QDir dir(folder.isEmpty() ? QStringLiteral(".") : folder);
            const QDir::Filters kinds = last ? QDir::Files : QDir::Dirs | QDir::NoDotAndDotDot;
            for (const QString& name :
                sorted(dir.entryList({parts[i]}, kinds | QDir::CaseSensitive, QDir::Unsorted)))
                next.append(join(folder, name));
        }
        found = next;
    }
    return found;
}

cExpansion expandOne(const QString& i_pattern)
{
    const QFileInfo info(i_pattern);
    if (info.isDir()) {
        const QStringList files = filesOfFolder(i_pattern);
        if (files.isEmpty())
            return {{},
                QStringLiteral("no file that can be read in the folder '%1', expected files with one of the "
                               "extensions %2")
                    .arg(i_pattern, readableExtensions().join(QStringLiteral(", ")))};
        return {files, {}};
    }
    if (info.exists() || !hasWildcard(i_pattern))
        return {{i_pattern}, {}};
    const QStringList files = matches(i_pattern);
    if (files.isEmpty())
        return {{}, QStringLiteral("no file matches '%1'").arg(i_pattern)};
    return {files, {}};
}

} // namespace

bool naturalLess(const QString& a, const QString& b)
{
    int i = 0, j = 0;
    int zeros = 0; // the first difference in leading zeros, which decides if nothing else does
    while (i < a.size() && j < b.size()) {
        if (!isDigit(a[i]) || !isDigit(b[j])) {
            if (a[i] != b[j])
                return a[i] < b[j];
            ++i;
            ++j;
            continue;
        }
        const Digits left(a, i), right(b, j);
        if (left.length() != right.length())
            return left.length() < right.length();
        const int order = QStringView(a)
                              .mid(left.first, left.length())
                              .compare(QStringView(b).mid(right.first, right.length()));
        if (order != 0)
            return order < 0;
        if (zeros == 0)
            zeros = (left.first - i) - (right.first - j);
        i = left.end;
        j = right.end;
    }
    const int restA = a.size() - i, restB = b.size() - j;
    return restA != restB ? restA < restB : zeros < 0;
}

cExpansion expandPattern(const QString& i_pattern)
{
    if (i_pattern.isEmpty())
        return {
            {}, QStringLiteral("no file is named, expected a file, a folder or a pattern such as in/*.png")};
    if (QFileInfo::exists(i_pattern) || !i_pattern.contains(u','))
        return expandOne(i_pattern);
    cExpansion result;
    const QStringList parts = i_pattern.split(u',', Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        cExpansion one = expandOne(part);
        if (!one.error.isEmpty())
            return one;
        result.files += one.files;
    }
    if (result.files.isEmpty())
        result.error = QStringLiteral("no file is named in '%1'").arg(i_pattern);
    return result;
}

QStringList readFileList(QTextStream& io_stream)
{
    QStringList files;
    QString line;
    while (io_stream.readLineInto(&line)) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (!line.isEmpty())
            files.append(line);
    }
    return files;
}

} // namespace host
