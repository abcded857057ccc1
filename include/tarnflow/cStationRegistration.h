#pragma once

#include <tarnflow/cStation.h>
#include <utility>
#include <vector>

/** The words of a station's registration, as they stand in its source (UTF-8). */
struct TARNFLOW_EXPORT cStationWords {
    const char* summary;
    std::vector<std::pair<const char*, const char*>> params; ///< key, meaning with its unit
    std::vector<const char*> notes; ///< where the behaviour differs from what the name suggests

    cStationInfo toInfo() const;
};

/** A static object of this class registers a station when its library is loaded. */
template <class Station> class cStationRegistration {
public:
    cStationRegistration(const char* i_id, const cStationWords& i_words)
    {
        cStation::registercStation(QString::fromLatin1(i_id), &create, i_words.toInfo());
    }

private:
    static cStation* create() { return new Station(); }
};
