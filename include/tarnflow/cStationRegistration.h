#pragma once

#include <tarnflow/cStation.h>

/** A static object of this class registers a station when its library is loaded. */
template <class Station> class cStationRegistration {
public:
    cStationRegistration(const char* i_id, const cStationInfo& i_info)
    {
        cStation::registercStation(QString::fromLatin1(i_id), &create, i_info);
    }

private:
    static cStation* create() { return new Station(); }
};
