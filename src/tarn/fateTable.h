#pragma once

#include <QList>
#include <QString>
#include <tarnflow/cFates.h>

namespace host {

/** Whether some frame at some port was not used. */
bool isAnyUnused(const QList<cPortFates>& i_fates);

/**
 * What arrived and what became of it: a line for each input port (or only for those at which something was
 * not used), and for each output port that lost results. Columns in which every number is 0 are left out, but
 * for "arrived" and "used". No line end at the end.
 */
QString fateTable(const QList<cPortFates>& i_fates, bool i_all);

} // namespace host
