#include "archive/participant_line.h"

#include "archive/record_columns.h"

#include <type_traits>

namespace {

void setText(SharedText& field, SharedText text) {
    field = text;
}
void setText(QString& field, SharedText text) {
    // A required text has no absent form: the empty text stands for it.
    field = text ? text.toString() : QString(QLatin1String(""));
}
void setText(std::optional<QString>& field, SharedText text) {
    field = text.toOptional();
}

} // namespace

template <class Row> void ParticipantLine::packFields(const Row& row) {
    m_packer.clear();
    RecordColumns<LocalParticipant>::visitLine(row, [&](const char*, const auto& field) {
        if constexpr (isTextField<std::remove_cvref_t<decltype(field)>>)
            m_packer.putText(m_texts.numberOf(SharedText(field)));
        else
            m_packer.put(field);
    });
}

template <class Row> void ParticipantLine::unpackFields(FieldUnpacker& in, Row& row) const {
    RecordColumns<LocalParticipant>::visitLine(row, [&](const char*, auto& field) {
        if constexpr (isTextField<std::remove_cvref_t<decltype(field)>>)
            if constexpr (std::is_same_v<std::remove_cvref_t<decltype(field)>, PlayerName>)
                field = m_texts.name(in.getText());
            else
                setText(field, m_texts.text(in.getText()));
        else
            in.get(field);
    });
}

QByteArrayView ParticipantLine::pack(const LocalParticipant& row) {
    if (const ParticipantDto* exact = row.exact())
        return pack(*exact);
    packFields(row);
    return m_packer.bytes();
}

QByteArrayView ParticipantLine::pack(const ParticipantDto& record) {
    packFields(record);
    return m_packer.bytes();
}

LocalParticipant ParticipantLine::unpack(qint64 serverId, qint64 matchServerId, QByteArrayView line,
                                         bool* damaged) const {
    LocalParticipant row;
    FieldUnpacker in(line);
    unpackFields(in, row);
    if (in.narrowed()) {
        ParticipantDto exact;
        exact.id = serverId;
        exact.matchId = matchServerId;
        FieldUnpacker again(line);
        unpackFields(again, exact);
        row = LocalParticipant(exact);
    } else {
        row.serverId = serverId;
        row.matchServerId = matchServerId;
    }
    if (damaged)
        *damaged = !in.atEnd();
    return row;
}
