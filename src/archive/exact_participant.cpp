#include "archive/exact_participant.h"

#include <QMutex>
#include <unordered_map>

namespace {

struct ExactRecords {
    QMutex lock;
    std::unordered_map<const ExactParticipant*, ParticipantDto> byHandle;
};

ExactRecords& records() {
    static ExactRecords table;
    return table;
}

} // namespace

ExactParticipant::ExactParticipant(const ExactParticipant& other) {
    set(other.get());
}

ExactParticipant::ExactParticipant(ExactParticipant&& other) noexcept {
    *this = std::move(other);
}

ExactParticipant& ExactParticipant::operator=(const ExactParticipant& other) {
    if (this != &other)
        set(other.get());
    return *this;
}

ExactParticipant& ExactParticipant::operator=(ExactParticipant&& other) noexcept {
    if (this == &other)
        return *this;
    set(nullptr);
    if (!other.m_held)
        return *this;
    // The record changes hands without a copy.
    ExactRecords& table = records();
    QMutexLocker lock(&table.lock);
    auto node = table.byHandle.extract(&other);
    node.key() = this;
    table.byHandle.insert(std::move(node));
    other.m_held = false;
    m_held = true;
    return *this;
}

ExactParticipant::~ExactParticipant() {
    set(nullptr);
}

void ExactParticipant::set(const ParticipantDto* record) {
    if (!record && !m_held)
        return;
    ExactRecords& table = records();
    QMutexLocker lock(&table.lock);
    if (record)
        table.byHandle.insert_or_assign(this, *record);
    else
        table.byHandle.erase(this);
    m_held = record != nullptr;
}

const ParticipantDto* ExactParticipant::get() const {
    if (!m_held)
        return nullptr;
    ExactRecords& table = records();
    QMutexLocker lock(&table.lock);
    const auto found = table.byHandle.find(this);
    return found == table.byHandle.end() ? nullptr : &found->second;
}
