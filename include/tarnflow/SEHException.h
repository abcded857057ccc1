#pragma once

#include <QString>
#include <tarnflow/export.h>

/** A structured exception of the platform, raised on a processing thread by its translator, where there is
 * such a thing. */
class TARNFLOW_EXPORT SEHException {
public:
    explicit SEHException(const QString& i_text) : m_text(i_text) {}
    QString what() const { return m_text; }

private:
    QString m_text;
};
