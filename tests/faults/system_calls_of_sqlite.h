#ifndef FAULTS_SYSTEM_CALLS_OF_SQLITE_H
#define FAULTS_SYSTEM_CALLS_OF_SQLITE_H

/// How the names of SQLite's own system calls begin among the faults: "sqlite: write", "sqlite: fdatasync"...
inline constexpr char systemCallsOfSqlite[] = "sqlite: ";

/// Has SQLite ask the fake platform before each of its system calls on files, so that they fail where the test says so.
/// Nothing is really synchronised any more, since no test here takes the power away.
void leadSystemCallsOfSqlite();

#endif
