#include "housekeeping/scheduled_deletion.h"

namespace ovd::housekeeping {

int scheduledHour(int DeleteHour, const std::string& DeleteAMPM) {
    if (DeleteAMPM == "PM" && DeleteHour != 12) return DeleteHour + 12;
    return DeleteHour;
}

ScheduledDeletion::ScheduledDeletion(ScheduledDeletionParts parts)
    : timCurTime(parts.loop, "timCurTime", kClockCheckIntervalMs),
      timDelete(parts.loop, "timDelete", kPurgeStartMs),
      parts_(std::move(parts)) {
    timCurTime.setOnTick([this] { checkClock(); });
    timDelete.setOnTick([this] { startPurge(); });
}

void ScheduledDeletion::turnOnWhenScheduled() {
    timCurTime.setEnabled(parts_.config.record.DeleteDay != 0);
}

void ScheduledDeletion::checkClock() {
    const settings::SettingsRecord& record = parts_.config.record;
    if (record.DeleteDay == 0) {
        timCurTime.setEnabled(false);
        return;
    }
    const auto now = parts_.loop.now();
    const LocalClock clock = localClockOf(now);
    if (clock.weekday != record.DeleteDay) return;
    if (clock.hour != scheduledHour(record.DeleteHour, record.DeleteAMPM)) return;
    if (clock.minute != record.DeleteMinute) return;
    const auto minute = std::chrono::duration_cast<std::chrono::minutes>(now.time_since_epoch());
    if (startedIn_ == minute) return;
    startedIn_ = minute;
    timDelete.setInterval(kPurgeStartMs);
    timDelete.setEnabled(true);
}

void ScheduledDeletion::startPurge() {
    timDelete.setEnabled(false);
    timDelete.setInterval(0);
    PurgescandirFilesInPath();
}

CleanSummary ScheduledDeletion::PurgescandirFilesInPath() {
    ++purgeRuns_;
    const KeptFiles kept(parts_.kept ? parts_.kept() : KeptPaths{});
    return housekeeping::PurgescandirFilesInPath(parts_.config.record.CaptureFilePath.toText(),
                                                 purgeDays_, localDayOf(parts_.loop.now()), kept,
                                                 parts_.log);
}

}  // namespace ovd::housekeeping
