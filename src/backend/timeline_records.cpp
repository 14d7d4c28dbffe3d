#include "backend/timeline_records.h"

TimelineSummaryDto::Frame TimelineSummaryDto::Frame::decode(const JsonReader& in) {
    return {in.integer("t"),        in.integer("ownerTeamGold"), in.integer("enemyTeamGold"),
            in.integer("goldDiff"), in.integer("ownerGold"),     in.integer("ownerCs"),
            in.integer("ownerXp"),  in.integer("ownerLevel")};
}

TimelineSummaryDto::Event TimelineSummaryDto::Event::decode(const JsonReader& in) {
    return {in.text("kind"),        in.integer("t"),      in.integer("team"),    in.flag("mine"),
            in.optText("killer"),   in.optText("victim"), in.optText("monster"), in.optText("subtype"),
            in.optText("building"), in.optText("lane")};
}

TimelineSummaryDto::FirstBlood TimelineSummaryDto::FirstBlood::decode(const JsonReader& in) {
    return {in.integer("t"), in.flag("mine"), in.optText("killer"), in.optText("victim")};
}

TimelineSummaryDto::Pair TimelineSummaryDto::Pair::decode(const JsonReader& in) {
    return {in.integer("mine"), in.integer("enemy")};
}

TimelineSummaryDto::Objectives TimelineSummaryDto::Objectives::decode(const JsonReader& in) {
    return {in.record<Pair>("dragons"), in.record<Pair>("barons"), in.record<Pair>("heralds"),
            in.record<Pair>("towers")};
}

TimelineSummaryDto::Stats TimelineSummaryDto::Stats::decode(const JsonReader& in) {
    Stats s;
    s.ownerCsAt10 = in.optInteger("ownerCsAt10");
    s.ownerCsAt14 = in.optInteger("ownerCsAt14");
    s.goldDiffAt10 = in.optInteger("goldDiffAt10");
    s.goldDiffAt14 = in.optInteger("goldDiffAt14");
    s.maxGoldLead = in.optInteger("maxGoldLead");
    s.maxGoldLeadAt = in.optInteger("maxGoldLeadAt");
    s.maxGoldDeficit = in.optInteger("maxGoldDeficit");
    s.maxGoldDeficitAt = in.optInteger("maxGoldDeficitAt");
    s.firstBlood = in.optRecord<FirstBlood>("firstBlood");
    s.objectives = in.record<Objectives>("objectives");
    return s;
}

TimelineSummaryDto TimelineSummaryDto::decode(const JsonReader& in) {
    TimelineSummaryDto t;
    t.ownerChampion = in.text("ownerChampion");
    t.ownerTeam = in.integer("ownerTeam");
    t.frames = in.records<Frame>("frames");
    t.events = in.records<Event>("events");
    t.stats = in.record<Stats>("stats");
    return t;
}
