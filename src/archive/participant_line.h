#pragma once

#include "archive/archive_texts.h"
#include "archive/field_packing.h"
#include "archive/local_participant.h"

#include <QByteArrayView>

// How a player row lies in the archive file: its keys (backend id, game) in columns of their own
// and every other field in one packed line (FieldPacker), its texts by number in the archive's
// table of texts. A start reads 200,000 of these rows; column by column SQLite spent most of the
// start decoding them.
class ParticipantLine {
public:
    explicit ParticipantLine(ArchiveTexts& texts) : m_texts(texts) {}

    // The line of a row: of its exact copy when it has one. New texts are added to the file, so
    // only inside the writer's open transaction. Valid until the next pack.
    [[nodiscard]] QByteArrayView pack(const LocalParticipant& row);
    [[nodiscard]] QByteArrayView pack(const ParticipantDto& record);

    // The row a line and its keys make. A line with a figure beyond the row's widths is read
    // again into the backend's record, which the row then keeps exactly; a damaged line gives
    // the fields after the damage their defaults and sets damaged. Reads only: safe on several
    // threads at once.
    [[nodiscard]] LocalParticipant unpack(qint64 serverId, qint64 matchServerId, QByteArrayView line,
                                          bool* damaged = nullptr) const;

private:
    template <class Row> void packFields(const Row& row);
    template <class Row> void unpackFields(FieldUnpacker& in, Row& row) const;

    ArchiveTexts& m_texts;
    FieldPacker m_packer;
};
