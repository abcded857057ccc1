#pragma once

#include <QtGlobal>
#include <tarnflow/export.h>

/** Measures the processor time that the calling thread has used since `start`. */
class TARNFLOW_EXPORT cThreadWatch {
public:
    void start();
    /** Nanoseconds. */
    qint64 elapsed() const;

private:
    qint64 m_start = 0;
};
