#include "cValueForm.h"

#include "jsonForms.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <cstring>
#include <tarnbase/cDataValObj.h>
#include <tarnflow/cOPort.h>

namespace {

/** The types that a parameter can have too: what is written for one serves for the other. */
template <class T> constexpr bool hasTextForm = false;
template <> constexpr bool hasTextForm<double> = true;
template <> constexpr bool hasTextForm<float> = true;
template <> constexpr bool hasTextForm<int> = true;
template <> constexpr bool hasTextForm<QColor> = true;
template <> constexpr bool hasTextForm<c2DPoint<int>> = true;

template <class T> class cValueFormT : public cValueForm {
public:
    const std::type_info& getType() const override { return typeid(T); }

    void write(const void* i_value, QByteArray& io_json) const override
    {
        jsonForms::write(*static_cast<const T*>(i_value), io_json);
    }

    Value read(const QJsonValue& i_json, cJsonProblem& o_problem) const override
    {
        T value {};
        return jsonForms::read(i_json, value, o_problem) ? std::make_shared<T>(value) : nullptr;
    }

    Value readText(const QString& i_text, QString& o_problem) const override
    {
        if constexpr (hasTextForm<T>) {
            if (!i_text.startsWith(u'[')) {
                cDataValObj<T> entry(T {}, 0);
                if (!entry.setFromText(i_text, &o_problem))
                    return nullptr;
                return std::make_shared<T>(*static_cast<const T*>(entry.getData()));
            }
        }
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson('[' + i_text.toUtf8() + ']', &error);
        if (error.error != QJsonParseError::NoError || document.array().size() != 1) {
            o_problem
                = QStringLiteral("expected a value in JSON, such as [1, 2, 3], found \"%1\"").arg(i_text);
            return nullptr;
        }
        cJsonProblem problem;
        Value value = read(document.array().at(0), problem);
        if (!value)
            o_problem = problem.toString();
        return value;
    }

    cOPortBase* makeOutput(cDfpNode* i_node, const QString& i_name) const override
    {
        return new cOPort<T>(i_node, i_name, defaultPoolSize<T>);
    }

    void send(cOPortBase& io_port, const Value& i_value, const cBufferStamp& i_stamp) const override
    {
        static_cast<cOPort<T>&>(io_port).send(*static_cast<const T*>(i_value.get()), i_stamp);
    }
};

template <class T> const cValueFormT<T> s_form;

/** Behind a JSON value, or any of its parts, that begins at a place. */
int skipValue(const QByteArray& i_text, int i_at)
{
    int depth = 0;
    do {
        const char c = i_text[i_at++];
        if (c == '"') {
            for (; i_text[i_at] != '"'; ++i_at)
                if (i_text[i_at] == '\\')
                    ++i_at;
            ++i_at;
        } else if (c == '[' || c == '{') {
            ++depth;
        } else if (c == ']' || c == '}') {
            --depth;
        } else if (depth == 0) {
            while (i_at < i_text.size() && !strchr(" \t\r\n,]}:", i_text[i_at]))
                ++i_at;
        }
    } while (depth > 0);
    return i_at;
}

int skipBlanks(const QByteArray& i_text, int i_at)
{
    while (i_at < i_text.size() && strchr(" \t\r\n", i_text[i_at]))
        ++i_at;
    return i_at;
}

} // namespace

const cValueForm* cValueForm::find(const std::type_info& i_type)
{
    static const std::vector<const cValueForm*> s_all = [] {
        std::vector<const cValueForm*> forms;
#define TARN_FORM(T) forms.push_back(&s_form<T>);
        TARNFLOW_VALUE_TYPES(TARN_FORM)
#undef TARN_FORM
        return forms;
    }();
    for (const cValueForm* form : s_all)
        if (form->getType() == i_type)
            return form;
    return nullptr;
}

QString cJsonProblem::toString() const
{
    return QStringLiteral("expected %1, found %2").arg(expected, host::jsonText(found));
}

namespace host {

QByteArray jsonString(const QString& i_text)
{
    const QByteArray array = QJsonDocument(QJsonArray {i_text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

QString jsonText(const QJsonValue& i_value)
{
    const QByteArray array = QJsonDocument(QJsonArray {i_value}).toJson(QJsonDocument::Compact);
    const QString text = QString::fromUtf8(array.mid(1, array.size() - 2));
    constexpr int longest = 60;
    return text.size() <= longest ? text : text.left(longest) + QStringLiteral("...");
}

int jsonElement(const QByteArray& i_text, int i_start, const QVector<int>& i_path)
{
    int at = i_start;
    for (const int index : i_path) {
        at = skipBlanks(i_text, at + 1);
        for (int i = 0; i < index; ++i)
            at = skipBlanks(i_text, skipBlanks(i_text, skipValue(i_text, at)) + 1);
    }
    return at;
}

int jsonMember(const QByteArray& i_text, int i_start, const QByteArray& i_key)
{
    int found = -1;
    int at = skipBlanks(i_text, i_start + 1);
    while (at < i_text.size() && i_text[at] == '"') {
        const int keyEnd = skipValue(i_text, at);
        const QByteArray key = i_text.mid(at + 1, keyEnd - at - 2);
        const int value = skipBlanks(i_text, skipBlanks(i_text, keyEnd) + 1);
        if (key == i_key)
            found = value; // of equal keys the last one counts
        at = skipBlanks(i_text, skipBlanks(i_text, skipValue(i_text, value)) + 1);
    }
    return found;
}

} // namespace host
