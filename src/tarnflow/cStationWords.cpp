#include <tarnflow/cStationRegistration.h>

cStationInfo cStationWords::toInfo() const
{
    cStationInfo info;
    info.summary = QString::fromUtf8(summary);
    for (const auto& [key, meaning] : params)
        info.params.append({QString::fromUtf8(key), QString::fromUtf8(meaning)});
    for (const char* note : notes)
        info.notes.append(QString::fromUtf8(note));
    return info;
}
