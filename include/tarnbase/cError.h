#pragma once

#include <tarnbase/export.h>

#include <QMetaType>
#include <QString>

class QTextStream;

/** The report of a failure in the flow: what happened, where and in which state of the flow. */
class TARNBASE_EXPORT cError {
    Q_GADGET
public:
    enum ErrorLevel {
        StepFailed = 0, ///< a step failed with a message; its node goes on
        SystemFault = 1, ///< the system raised a fault during a step; its node goes on
        UnknownFault = 2 ///< something unknown escaped a step; its node must be taken for dead
    };
    Q_ENUM(ErrorLevel)

    /** What the node was doing. */
    enum DataflowState {
        Undefined = 0,
        Constructing = 1,
        Initialising = 2,
        Checking = 3,
        Starting = 4,
        PostStarting = 5,
        Processing = 6,
        Stopping = 7,
        Destroying = 8
    };
    Q_ENUM(DataflowState)

    cError() = default;
    cError(ErrorLevel i_level, DataflowState i_state, const QString& i_message, const QString& i_path);
    cError(const cError&) = default;
    cError(cError&&) = default;
    cError& operator=(const cError&) = default;
    cError& operator=(cError&&) = default;
    ~cError();

    ErrorLevel getLevel() const { return m_level; }
    DataflowState getState() const { return m_state; }
    const QString& getMessage() const { return m_message; }
    /** Path of the node in its graph. */
    const QString& getPath() const { return m_path; }

private:
    ErrorLevel m_level = StepFailed;
    DataflowState m_state = Undefined;
    QString m_message;
    QString m_path;
};

/** Writes "path: message". */
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const cError& i_error);

Q_DECLARE_METATYPE(cError)
