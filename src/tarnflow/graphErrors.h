#pragma once

#include <QStringList>
#include <tarnflow/cGraphError.h>

namespace graphErrors {

/** Fills o_error, if there is one. @return false, so that a function can end with it. */
bool fail(cGraphError* o_error, const QString& i_place, const QString& i_message,
    const QString& i_help = QString());

/** "did you mean "x"?" when a candidate looks alike, else the list of candidates. */
QString suggest(const QString& i_text, const QStringList& i_candidates, const QString& i_what);

/** A text in double quotes. */
QString quoted(const QString& i_text);

} // namespace graphErrors
