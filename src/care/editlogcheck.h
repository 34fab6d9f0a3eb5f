#pragma once

#include "care/shopcheck.h"

namespace vantrel {

class BooksReader;

// Looks at the edit log of the books (the file's, or the server's) and adds to REPORT what it finds. Both depths check that the
// log and every one of its triggers stand as the program made them. The full check also walks
// the chain from the log's start (naming the first entry where it breaks: an entry changed,
// deleted or put in out of turn), replays every table's entries against its rows (a row
// written or changed while the log was off, and the rows the log started from), and notes each
// change that something other than the program made. The replay starts from the log's newest
// start: a log moved onto the server goes on from the rows as the move left them.
void checkEditLog(BooksReader &file, CheckDepth depth, CheckReport &report);
// The log and its triggers as they stand, and its chain walked from the start, without the
// replay: what a copy read back must show to be whole.
void checkEditLogChain(BooksReader &file, CheckReport &report);

} // namespace vantrel
