#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/**
 * The words after a command, sorted into options and the rest.
 *
 * "--key value" and "--key=value", "-k value" and "-kvalue"; what follows "--" is no option. An option that
 * is not declared is an error.
 */
class cOptions {
public:
    struct Spec {
        QString name; ///< "--limit" or "-e"
        QString value; ///< what its value is called in the usage; empty if it has none
        QString help;
        QString alias = QString(); ///< another name for it
    };

    /** Besides these there is always --help. */
    explicit cOptions(const QList<Spec>& i_specs = {});

    /** @return what is wrong: a message and, after a line end, help; empty if nothing is */
    QString parse(const QStringList& i_words);

    bool has(const QString& i_name) const { return m_values.contains(i_name); }
    /** The last value that was given, or an empty string. */
    QString get(const QString& i_name) const
    {
        return m_values.value(i_name).isEmpty() ? QString() : m_values[i_name].last();
    }
    QStringList getAll(const QString& i_name) const { return m_values.value(i_name); }
    const QStringList& getRest() const { return m_rest; }

    /** One line per option, for the usage text. */
    QString usage() const;

private:
    const Spec* find(const QString& i_name) const;

    QList<Spec> m_specs;
    QHash<QString, QStringList> m_values; ///< by the option's name, not its alias
    QStringList m_rest;
};
