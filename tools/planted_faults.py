"""The faults that tools/plant_faults.py plants: each a change of one place that the named test programs must notice.

A place is named by its file and by a text that stands there just once, so a fault outlives moves between folders.
"""

from typing import NamedTuple


class Fault(NamedTuple):
    name: str
    file: str  # its name alone, without folder
    old: str
    new: str
    tests: tuple  # test programs, the first that may notice it first


FAULTS = (
    # Archive: what is written, proved and named in the index.
    Fault("an .eml isn't flushed", "durable_write.cpp",
          'return files.sync(file) == 0 ? nullptr : "fsync";', "return nullptr;", ("archive",)),
    Fault("any readable file counts as proved", "file_placement.cpp",
          "if (result_.reading.content == DiskContent::same) return;",
          "if (result_.reading.content != DiskContent::unreadable) return;", ("archive",)),
    Fault("another mail's file is removed", "file_placement.cpp",
          "case DiskContent::other:\n        moveAside(folder);", "case DiskContent::other:\n        folder.unlink(name_);",
          ("archive",)),
    Fault("a link leads out of the archive", "archive_folders.cpp",
          "if (!folder || isIn(files, folder.get(), parent)) return folder;", "return folder;", ("archive",)),
    Fault("a negative count cuts everything", "message_extraction.cpp",
          "return count && *count >= 0 ? count : std::nullopt;", "return count;", ("archive",)),
    Fault("the smallest copy is kept", "message_extraction.cpp",
          "copies[copy].bytes.size() > copies[group->largest].bytes.size()",
          "copies[copy].bytes.size() < copies[group->largest].bytes.size()", ("archive",)),
    Fault("known mail is archived again", "message_plan.cpp",
          "return isIntact(mail) && mail.file.hash == readings[copy].reading.hash;", "return false;", ("archive",)),
    Fault("a damaged index isn't kept", "archive_destination.cpp",
          "if (reading.state == State::damaged) loaded.damagedKeptAs = keepDamagedIndex(now);", "", ("archive",)),
    Fault("two runs write into one archive", "archive_destination.cpp", "if (hasEnded && locking->isTaken) {",
          "if (false) {", ("archive",)),
    Fault("folders of a run aren't synced", "destination_jobs.cpp",
          "syncDirectory(files, descriptor.get()) != EIO;", "true;", ("archive",)),
    Fault("a new root isn't synced", "mail_email_archiver.cpp", "    destination_.syncRoot();\n", "", ("archive",)),
    Fault("an index that changed is overwritten", "destination_jobs.cpp", "if (present == loaded_) return", "if (true) return",
          ("archive",)),
    Fault("another message's file is archived", "message_copies.cpp", "if (holdsAnotherMessage(",
          "if (false && holdsAnotherMessage(", ("archive",)),
    Fault("a file that grew is clean", "archive_verification.cpp", "const bool hasSize = file.bytesRead == record.sizeBytes;",
          "const bool hasSize = file.bytesRead >= record.sizeBytes;", ("archive",)),
    # Search: the same set for every query.
    Fault("an underscore stands for any character", "substring_search.cpp",
          "character == '%' || character == '_')", "character == '%')", ("search",)),
    Fault("a long text is found by half of its pieces", "substring_search.cpp",
          "if (!isCertain) return lookups_.idsHolding(text, *rows);", "", ("search",)),
    Fault("the ends of columns are left out", "pair_search.cpp", "ends_.addRowsEndingWith(pair, rows);", "",
          ("search",)),
    Fault("a placeholder counts as a body", "mail_search_index.cpp",
          "return trimmed.empty() || trimmed == emptyBodyPreviewPlaceholder;", "return trimmed.empty();",
          ("search", "archive")),
    Fault("rows that a failed commit took back count", "mail_search_index.cpp",
          "return endWriting(inserted.has_value()) ? *inserted : 0;",
          "endWriting(inserted.has_value());\n    return inserted.value_or(0);", ("search", "archive")),
    # Listing: what follows from a list of messages.
    Fault("the poorer copy is kept", "scan_deduplication.cpp", "if (isBetterDuplicate(record, existing)) existing",
          "if (!isBetterDuplicate(record, existing)) existing", ("listing", "model")),
    Fault("the files of other copies are forgotten", "scan_deduplication.cpp",
          "existing.relatedMessageFileURLs = std::move(urls);", "", ("listing", "model")),
    Fault("trash counts", "message_statistics.cpp", "if (counted.isTrash || seen[counted.key]) continue;",
          "if (seen[counted.key]) continue;", ("listing", "model")),
    Fault("years before 1 count", "message_statistics.cpp", "if (!counted.year || *counted.year < 1) return;",
          "if (!counted.year) return;", ("listing", "model")),
    # Locations and model: what is known to be archived, and what is shown of it.
    Fault("the unconnected copy of an archive is listed", "loaded_archives.cpp",
          "archives[i].connected && !archives[holder->second].connected",
          "!archives[i].connected && archives[holder->second].connected", ("locations", "model")),
    Fault("a variant's own id takes nothing out of the candidates", "loaded_archives.cpp",
          "const std::string_view base = baseID(entries[i].record);",
          "const std::string_view base = entries[i].record.id.view();", ("locations", "model")),
    Fault("a forgotten archive stays listed", "library_load.cpp",
          "if (input_.forgotten.contains(root) && !comesBack(root, hasContent)) return;", "", ("locations", "model")),
    Fault("a replaced job is still wanted", "task_slot.h", "        requestStop();\n        job_.reset();",
          "        requestStop();", ("model",)),
    Fault("the list of a cancelled scan is kept for the next start", "message_catalog.cpp", "if (state_->set->isComplete) {\n        dueCache_",
          "if (true) {\n        dueCache_", ("model",)),
    Fault("a run leaves the library as it was", "corvane_view_model.cpp",
          "loadArchiveIndex(true);\n            destinations_.refreshFacts();", "destinations_.refreshFacts();",
          ("model", "screens_home")),
    Fault("archived mail stays a candidate", "candidates.h", "return !facts.isArchived() && !facts.isWithheld();",
          "return !facts.isWithheld();",
          ("listing", "model")),
    Fault("mail of the newest year asked for is left out", "candidates.cpp",
          "(!maximumYear || *year <= *maximumYear)", "(!maximumYear || *year < *maximumYear)", ("listing", "model")),
    Fault("a destination that is exactly large enough is refused", "archive_capacity.cpp",
          "*available >= estimate", "*available > estimate", ("listing", "model")),
    Fault("mail without a local file counts as safe", "deletion_safety.cpp",
          "if (!input.locallyAvailableIDs.contains(message.id)) continue;", "", ("listing", "model")),
    Fault("a window's safe figure counts what isn't archived", "deletion_safety.cpp",
          "} else if (archivedIDs.contains(message.id)) {", "} else {", ("listing", "screens_home")),
    # What others can see, and what is left.
    Fault("others may read what is written", "durable_file.cpp", "return existing.st_mode & most;",
          "return existing.st_mode & 0777;", ("platform",)),
    Fault("what an earlier version left open stays open", "private_files.cpp", "narrowContent(path);", 'narrowContent("");',
          ("platform",)),
    Fault("a file in use is taken for a remnant", "leftovers.cpp", "if (claim == FileClaim::refused) return false;", "",
          ("platform",)),
    Fault("a mark of direction stays in a name", "hidden_characters.h", "(scalar >= 0x202A && scalar <= 0x202E)", "false",
          ("text", "archive")),
    # Library: what is grouped, and what may be deleted.
    Fault("an unproven original frees space", "archived_overview.cpp", "if (facts_.isProven(position)) {", "if (true) {",
          ("library",)),
    Fault("a group that nobody knows is cleanable", "archived_overview.cpp", "if (group.mailAccounts.empty())",
          "if (false)", ("library",)),
    Fault("one unsafe folder doesn't hold its year back", "archived_overview.cpp",
          "if (!stats.isCleanable) stats.freeable = {};", "", ("library",)),
    Fault("a guide spans years between", "smart_mailbox_guide.cpp",
          "if (targets.empty() || targets.back().years.back() + 1 != year)", "if (targets.empty())", ("library",)),
    Fault("absent mail joins all subjects", "thread_keys.cpp", "std::uint64_t{subject} << 32 |", "", ("library",)),
    Fault("a history is folded during a search", "body_split.h", "return query.empty() && quotedText.has_value();",
          "return quotedText.has_value();", ("mime",)),
)
