#include "cOptions.h"

#include "cDiagnostic.h"

#include <algorithm>

cOptions::cOptions(const QList<Spec>& i_specs)
    : m_specs(i_specs
        + QList<Spec> {
            {QStringLiteral("--help"), QString(), QStringLiteral("this text"), QStringLiteral("-h")}})
{
}

const cOptions::Spec* cOptions::find(const QString& i_name) const
{
    const auto found = std::find_if(m_specs.begin(), m_specs.end(), [&](const Spec& i_spec) {
        return i_spec.name == i_name || (!i_name.isEmpty() && i_spec.alias == i_name);
    });
    return found == m_specs.end() ? nullptr : &*found;
}

QString cOptions::parse(const QStringList& i_words)
{
    for (int i = 0; i < i_words.size(); ++i) {
        const QString& word = i_words[i];
        if (word == QLatin1String("--")) {
            m_rest += i_words.mid(i + 1);
            break;
        }
        if (!word.startsWith(u'-') || word == QLatin1String("-")) {
            m_rest.append(word);
            continue;
        }
        const bool isLong = word.startsWith(QLatin1String("--"));
        const int nameEnd = isLong ? word.indexOf(u'=') : word.size() > 2 ? 2 : -1;
        const QString name = word.left(nameEnd < 0 ? word.size() : nameEnd);
        const Spec* spec = find(name);
        if (!spec) {
            QStringList names;
            for (const Spec& known : qAsConst(m_specs))
                names << known.name << (known.alias.isEmpty() ? known.name : known.alias);
            names.removeDuplicates();
            return QStringLiteral("unknown option, found '%1'\n%2").arg(name, host::suggest(name, names));
        }
        if (spec->value.isEmpty()) {
            if (nameEnd >= 0)
                return QStringLiteral("the option %1 takes no value, found '%2'").arg(name, word);
            m_values[spec->name].append(QString());
        } else if (nameEnd >= 0) {
            m_values[spec->name].append(word.mid(isLong ? nameEnd + 1 : nameEnd));
        } else if (i + 1 < i_words.size()) {
            m_values[spec->name].append(i_words[++i]);
        } else {
            return QStringLiteral("the option %1 needs a value, expected %1 %2").arg(name, spec->value);
        }
    }
    return {};
}

QString cOptions::usage() const
{
    QStringList heads;
    int width = 0;
    for (const Spec& spec : m_specs) {
        QString head = spec.alias.isEmpty() ? spec.name : spec.alias + QStringLiteral(", ") + spec.name;
        if (!spec.value.isEmpty())
            head += u' ' + spec.value;
        heads.append(head);
        width = std::max(width, int(head.size()));
    }
    QString text;
    for (int i = 0; i < heads.size(); ++i)
        text += QStringLiteral("  %1  %2\n").arg(heads[i].leftJustified(width), m_specs[i].help);
    return text;
}
