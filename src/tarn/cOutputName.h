#pragma once

#include <QString>
#include <vector>

/**
 * The pattern of the files that a run writes: text with the placeholders {stem} (the input's file name
 * without its folder and extension), {index} (the frame's number in its source from 0 on, with at least four
 * digits), {stamp} (the frame's stamp) and {port} (the output port that it came from). "{{" and "}}" are
 * single braces.
 */
class cOutputName {
public:
    struct Frame {
        QString stem;
        quint64 index = 0;
        qint64 stamp = 0;
        QString port;
    };

    /** What is wrong with a pattern: what was expected, what was found; empty if nothing is. The name stays
     * unchanged then. */
    QString set(const QString& i_pattern);
    /** The path for a frame. A '/' in a stem or a port's name becomes '_', so that a frame never chooses its
     * folder. */
    QString make(const Frame& i_frame) const;
    /** Whether the path differs from frame to frame. */
    bool isVarying() const;

private:
    enum EKind { Text, Stem, Index, Stamp, Port };
    struct Piece {
        EKind kind;
        QString text;
    };
    std::vector<Piece> m_pieces;
};
