// The text forms of values: what people type, graph files hold and trees are written as. One line of
// printable text, independent of the locale, and without loss on the way back.
#pragma once

#include <tarnbase/c2DPoint.h>
#include <tarnbase/cMatrix.h>
#include <tarnbase/cRange.h>
#include <tarnbase/cRect.h>

#include <QColor>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace textForm {

QString toText(bool i_value);
QString toText(int i_value);
QString toText(unsigned int i_value);
QString toText(unsigned char i_value);
QString toText(unsigned short i_value);
QString toText(float i_value);
QString toText(double i_value);
QString toText(const QString& i_value); // the value itself, the one form that need not be one line
QString toText(const QStringList& i_value);
QString toText(const QColor& i_value);
QString toText(const QSize& i_value);
QString toText(const c2DPoint<int>& i_value);
QString toText(const cRect<int>& i_value);
QString toText(const cRange<double>& i_value);
QString toText(const cMatrix<int>& i_value);
QString toText(const cMatrix<float>& i_value);

// Each returns false for a text that it cannot read, leaves the value, and tells in o_error, if that is not
// null, what was expected and what was found.
bool fromText(const QString& i_text, bool& o_value, QString* o_error);
bool fromText(const QString& i_text, int& o_value, QString* o_error);
bool fromText(const QString& i_text, unsigned int& o_value, QString* o_error);
bool fromText(const QString& i_text, unsigned char& o_value, QString* o_error);
bool fromText(const QString& i_text, unsigned short& o_value, QString* o_error);
bool fromText(const QString& i_text, float& o_value, QString* o_error);
bool fromText(const QString& i_text, double& o_value, QString* o_error);
bool fromText(const QString& i_text, QString& o_value, QString* o_error);
bool fromText(const QString& i_text, QStringList& o_value, QString* o_error);
bool fromText(const QString& i_text, QColor& o_value, QString* o_error);
bool fromText(const QString& i_text, QSize& o_value, QString* o_error);
bool fromText(const QString& i_text, c2DPoint<int>& o_value, QString* o_error);
bool fromText(const QString& i_text, cRect<int>& o_value, QString* o_error);
bool fromText(const QString& i_text, cRange<double>& o_value, QString* o_error);
bool fromText(const QString& i_text, cMatrix<int>& o_value, QString* o_error);
bool fromText(const QString& i_text, cMatrix<float>& o_value, QString* o_error);

/** The text in double quotes, with escapes for whatever is not printable. */
QString quote(QStringView i_text);

/** Reads a quoted text from its opening quote on; io_position then stands behind the closing one. */
bool unquote(QStringView i_text, int& io_position, QString& o_value);

/** expected <what>, found "<text>"; a long text is cut. */
QString complaint(const QString& i_expected, QStringView i_found);

} // namespace textForm
