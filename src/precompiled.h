// Precompiled for the Qt libraries only: what nearly every source includes anyway.
#pragma once
#include <QHash>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <atomic>
#include <functional>
#include <memory>
