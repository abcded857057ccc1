// The text of a whole tree. A value is its type and its text; a map holds one entry a line:
//
//     {
//         Range = range 0,255
//         AutoRange = {
//             Use = bool false
//         }
//         "a key with blanks" = string "any text\n"
//     }
//
// Keys of letters, digits and _ . - stand bare, others in quotes. '#' at the start of an entry begins a
// comment.
#pragma once

#include <QString>

class QTextStream;
class cObj;

namespace treeText {

struct Written {
    QString text;
    bool complete = true; // nothing had to be left out
};

/** The text of a tree; what has no text form is reported on the trace and left out. */
Written write(const cObj& i_root);

bool write(const cObj& i_root, QTextStream& io_stream);
bool read(cObj& io_root, QTextStream& io_stream);

} // namespace treeText
