#include <tarnbase/cError.h>

#include <QTextStream>

cError::cError(ErrorLevel i_level, DataflowState i_state, const QString& i_message, const QString& i_path)
    : m_level(i_level),
      m_state(i_state),
      m_message(i_message),
      m_path(i_path)
{
}

cError::~cError() = default;

QTextStream& operator<<(QTextStream& io_stream, const cError& i_error)
{
    if (!i_error.getPath().isEmpty())
        io_stream << i_error.getPath() << ": ";
    return io_stream << i_error.getMessage();
}

#include "moc_cError.cpp"
