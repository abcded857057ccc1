#pragma once

#include <QMetaType>
#include <QString>
#include <tarnflow/export.h>

/** Why a graph cannot be built, changed or started: the place, what is wrong, and the fix. */
struct TARNFLOW_EXPORT cGraphError {
    QString place; ///< "station", "station.port" or "station.parameter", as a path in the graph
    QString message; ///< what is wrong, what was expected, what was found
    QString help; ///< how to mend it; may be empty

    /** "place: message". */
    QString toString() const { return place.isEmpty() ? message : place + QStringLiteral(": ") + message; }
};

Q_DECLARE_METATYPE(cGraphError)
