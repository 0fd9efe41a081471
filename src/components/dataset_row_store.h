#pragma once

// Private to the dataset: how its rows are held in memory.
#include "components/dataset.h"

#include <QVariant>
#include <vector>

namespace qm {

// Rows in memory: one typed array per held field rather than a list of variants per row, so that
// a large table costs a few machine words a row. A value of another type than its column's turns
// that column into variants; nulls read back exactly as the engine gave them.

class Dataset::RowStore {
public:
    explicit RowStore(int columns) : m_columns(static_cast<size_t>(columns > 0 ? columns : 0)) {}

    qsizetype size() const { return m_size; }
    /// Appends a row; `values` holds one value per column and is left moved from.
    void append(QVariantList& values) {
        for (size_t s = 0; s < m_columns.size(); ++s)
            m_columns[s].insert(m_size, std::move(values[qsizetype(s)]));
        ++m_size;
    }
    void insertNull(qsizetype row) {
        for (Column& c : m_columns)
            c.insert(row, QVariant(c.nullValue));
        ++m_size;
    }
    void remove(qsizetype row) {
        for (Column& c : m_columns)
            c.remove(row);
        --m_size;
    }
    QVariant get(qsizetype row, int slot) const { return m_columns[size_t(slot)].get(row); }
    void set(qsizetype row, int slot, const QVariant& value) { m_columns[size_t(slot)].set(row, value); }

private:
    template <typename T, typename V> static void place(std::vector<T>& values, qsizetype row, V&& value) {
        if (size_t(row) == values.size())
            values.push_back(std::forward<V>(value));
        else
            values.insert(values.begin() + row, std::forward<V>(value));
    }

    struct Column {
        enum Kind { Nulls, Int, Real, Text, Any };
        Kind kind = Nulls;
        bool nullKnown = false;
        QVariant nullValue; ///< what a null of this column reads back as
        std::vector<bool> nulls;
        std::vector<qint64> ints;
        std::vector<double> reals;
        std::vector<QString> texts;
        std::vector<QVariant> any;

        static Kind kindOf(const QVariant& v) {
            switch (v.metaType().id()) {
            case QMetaType::LongLong:
                return Int;
            case QMetaType::Double:
                return Real;
            case QMetaType::QString:
                return Text;
            default:
                return Any;
            }
        }
        /// Whether the column can keep `v` as it is; the first null sets how nulls read back, and
        /// the first value the column's type.
        bool fits(const QVariant& v, bool null) {
            if (kind == Any)
                return true;
            if (null) {
                if (!nullKnown) {
                    nullValue = v;
                    nullKnown = true;
                    return true;
                }
                return v.metaType() == nullValue.metaType();
            }
            const Kind k = kindOf(v);
            if (k == Any)
                return false;
            if (kind == Nulls) {
                kind = k;
                const size_t n = nulls.size();
                if (k == Int)
                    ints.resize(n);
                else if (k == Real)
                    reals.resize(n);
                else
                    texts.resize(n);
            }
            return k == kind;
        }
        void toAny() {
            std::vector<QVariant> values;
            values.reserve(nulls.size());
            for (size_t i = 0; i < nulls.size(); ++i)
                values.push_back(get(qsizetype(i)));
            any = std::move(values);
            nulls = std::vector<bool>();
            ints = std::vector<qint64>();
            reals = std::vector<double>();
            texts = std::vector<QString>();
            kind = Any;
        }
        void insert(qsizetype row, QVariant&& v) {
            const bool null = (!v.isValid() || v.isNull());
            if (!fits(v, null))
                toAny();
            if (kind == Any) {
                place(any, row, std::move(v));
                return;
            }
            place(nulls, row, null);
            // The column's type is the value's own here, so the values are taken as they are.
            if (kind == Int)
                place(ints, row, null ? 0 : *static_cast<const qlonglong*>(v.constData()));
            else if (kind == Real)
                place(reals, row, null ? 0.0 : *static_cast<const double*>(v.constData()));
            else if (kind == Text)
                place(texts, row, null ? QString() : std::move(*static_cast<QString*>(v.data())));
        }
        void remove(qsizetype row) {
            if (kind == Any) {
                any.erase(any.begin() + row);
                return;
            }
            nulls.erase(nulls.begin() + row);
            if (kind == Int)
                ints.erase(ints.begin() + row);
            else if (kind == Real)
                reals.erase(reals.begin() + row);
            else if (kind == Text)
                texts.erase(texts.begin() + row);
        }
        void set(qsizetype row, const QVariant& v) {
            const bool null = (!v.isValid() || v.isNull());
            if (!fits(v, null))
                toAny();
            const auto at = size_t(row);
            if (kind == Any) {
                any[at] = v;
                return;
            }
            nulls[at] = null;
            if (kind == Int)
                ints[at] = null ? 0 : v.toLongLong();
            else if (kind == Real)
                reals[at] = null ? 0.0 : v.toDouble();
            else if (kind == Text)
                texts[at] = null ? QString() : v.toString();
        }
        QVariant get(qsizetype row) const {
            const auto at = size_t(row);
            if (kind == Any)
                return any[at];
            if (nulls[at])
                return nullValue;
            switch (kind) {
            case Int:
                return QVariant(qlonglong(ints[at]));
            case Real:
                return QVariant(reals[at]);
            case Text:
                return QVariant(texts[at]);
            default:
                return nullValue;
            }
        }
    };

    std::vector<Column> m_columns;
    qsizetype m_size = 0;
};

} // namespace qm
