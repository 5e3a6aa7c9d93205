#pragma once

// The shared row callbacks of sqlite3_exec. Each finds the object it fills through the context
// pointer, returns 0 so that SQLite goes on to the next row, and never allocates on the
// SQLite side.

namespace quillery::archive {

// Context: Archive*. Sets sqlResult to the row's first column, "0" when NULL. After several
// rows the last one wins; after none sqlResult keeps what it held.
int singleValueCallback(void* context, int columns, char** values, char** names);
// Context: Archive*. Appends every column to columnValues and adds 1 to columnRowCount.
int columnListCallback(void* context, int columns, char** values, char** names);
// Context: IdListState*. Appends the first column, as "%s" would print it, and counts it.
int idListCallback(void* context, int columns, char** values, char** names);
// Context: EmailRecord*. Reads date, from, to, subject, body, mailbox, mailto and, when the
// row has more than six columns, numAttach (0 when NULL or absent).
int emailRecordCallback(void* context, int columns, char** values, char** names);
// Context: TagRecord*. Reads category, keywords, priority and notes and raises tagFound;
// does nothing for a row without columns.
int tagRecordCallback(void* context, int columns, char** values, char** names);

// Context: QString* (the shared message text). Replaces the text with the block "ID: " id
// "\nDATE: " date "\nFROM: " from "\nTO: " to "\nSUBJECT: " subject "\nMAILBOX: " mailbox
// "\n\n" body, from the seven columns of kPrintTextStatement in that order. A NULL column adds
// nothing but its label is still written; the block has no line break after the body.
int printTextCallback(void* context, int columns, char** values, char** names);

}  // namespace quillery::archive
