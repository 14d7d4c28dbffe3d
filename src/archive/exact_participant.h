#pragma once

#include "backend/archive_records.h"

// The backend's exact record of a stored row whose figures do not fit the row, or nothing.
//
// Nearly no row needs one, so the row does not pay a pointer for it: the record lives in a table
// of the process keyed by where this one-byte handle lies, and the handle moves, copies and drops
// it with itself. A row is built on the loading thread and read on the main one, so the table
// is locked; it is only touched for rows that hold a record.
class ExactParticipant {
public:
    ExactParticipant() = default;
    ExactParticipant(const ExactParticipant& other);
    ExactParticipant(ExactParticipant&& other) noexcept;
    ExactParticipant& operator=(const ExactParticipant& other);
    ExactParticipant& operator=(ExactParticipant&& other) noexcept;
    ~ExactParticipant();

    // Keeps a copy of record, or drops the one held when null.
    void set(const ParticipantDto* record);
    // The record held, or null; valid until the handle changes or goes.
    [[nodiscard]] const ParticipantDto* get() const;

private:
    bool m_held = false;
};
