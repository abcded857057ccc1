#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <tarnflow/export.h>

/**
 * What only a person can say about a station. It stands with the class, at its registration; ports, types,
 * defaults and allowed keys come from the live object.
 */
struct TARNFLOW_EXPORT cStationInfo {
    struct Param {
        QString key;
        QString meaning; ///< what it does, with its unit
    };
    QString summary; ///< one sentence
    QList<Param> params;
    QStringList notes; ///< where the behaviour differs from what the name suggests
    QString mainParam; ///< the parameter that a bare word after the station's name sets in a graph text; may
                       ///< be empty
};
