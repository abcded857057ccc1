#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QVector>
#include <memory>
#include <tarnflow/cBufferStamp.h>
#include <typeinfo>

class cDfpNode;
class cOPortBase;

/** Why a JSON value is not what a port takes. */
struct cJsonProblem {
    QVector<int> path; ///< of indices into nested arrays, down to the value that is wrong
    QString expected; ///< "a number", ...
    QJsonValue found;

    QString toString() const; ///< expected <what>, found <text>
};

/**
 * One type of the values that ports carry, images apart: its form in JSON, and output ports for it.
 *
 * | Type | JSON |
 * |---|---|
 * | `double`, `float` | the shortest number with the same bits (-0.0 reads back as 0); `"nan"`, `"inf"`,
 * `"-inf"` | | `int` | a number without a fraction | | colour | `"#rrggbb"`, `"#aarrggbb"` or any other text
 * of a colour parameter; null if invalid | | point | `[x, y]` | | line | `[[x, y], [x, y]]`, start and end |
 * | matrix | an array of rows |
 * | path | an array of `["M", x, y]`, `["L", x, y]` and `["C", x, y, x, y, x, y]` |
 * | vector of any of these | an array |
 */
class cValueForm {
public:
    using Value = std::shared_ptr<const void>; ///< of the form's type

    virtual ~cValueForm() = default;
    virtual const std::type_info& getType() const = 0;
    /** Appends the JSON of a value of this type. */
    virtual void write(const void* i_value, QByteArray& io_json) const = 0;
    /** Null, with the problem, for JSON of another form. */
    virtual Value read(const QJsonValue& i_json, cJsonProblem& o_problem) const = 0;
    /** Reads what people write for a parameter: 2.5, #ff8000, 3,4 or JSON. Null, with the problem, if it
     * cannot. */
    virtual Value readText(const QString& i_text, QString& o_problem) const = 0;
    /** A new output on the heap, which the node owns. */
    virtual cOPortBase* makeOutput(cDfpNode* i_node, const QString& i_name) const = 0;
    virtual void send(cOPortBase& io_port, const Value& i_value, const cBufferStamp& i_stamp) const = 0;

    /** The form of a type; null for images, and for types that this library does not know. */
    static const cValueForm* find(const std::type_info& i_type);
};

namespace host {

/** A text as a JSON string, in quotes. */
QByteArray jsonString(const QString& i_text);
/** Any JSON value as text on one line; a long one is cut. */
QString jsonText(const QJsonValue& i_value);

/** Where in a valid JSON text a value stands: of the value at i_start, the element along a path of indices.
 */
int jsonElement(const QByteArray& i_text, int i_start, const QVector<int>& i_path);
/** Where the value of a key of the object at i_start begins; -1 if there is no such key. */
int jsonMember(const QByteArray& i_text, int i_start, const QByteArray& i_key);

} // namespace host
