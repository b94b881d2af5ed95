// What the component asks of a database: connections that open at once or in the background, and run SQL text.
#pragma once

#include <memory>
#include <string>

#include "ports/row_set.h"

namespace quenta::ports {

// The numbers are ADO's (adStateClosed, adStateOpen, adStateConnecting); the race of two servers adds them up.
enum class ConnectionState { kClosed = 0, kOpen = 1, kConnecting = 2 };

// One connection. Every failure is a base::Error that carries the provider's number and text.
// Belongs to the thread that created it.
class Connection {
 public:
  virtual ~Connection() = default;

  // Says what was last known: a line that died still counts as open until a statement fails on it.
  virtual ConnectionState State() = 0;

  virtual std::string ConnectionString() = 0;
  // Takes effect at the next open. Error 3705 while open or connecting.
  virtual void SetConnectionString(const std::string& text) = 0;

  // Seconds an open may take before it fails; 15 at first.
  virtual int ConnectionTimeout() = 0;
  virtual void SetConnectionTimeout(int seconds) = 0;

  // Opens and waits for the end.
  virtual void Open() = 0;
  // Starts to open and returns at once; State() is kConnecting until the open has ended, one way or the other.
  virtual void OpenAsync() = 0;
  // After OpenAsync has ended: throws the error of an open that ended closed, returns when it is open.
  virtual void ThrowIfOpenFailed() = 0;
  // Also gives up an open in progress. Nothing happens when closed already.
  virtual void Close() = 0;

  // Runs a statement and reads its whole result before returning, so that the next statement never meets a pending
  // one. A statement without a result gives a RowSet without columns. Error 3709 when the connection is not open.
  virtual RowSet Query(const std::string& sql) = 0;
  // Runs a statement and drops what it returns.
  virtual void Execute(const std::string& sql) = 0;

  virtual void BeginTransaction() = 0;
  virtual void CommitTransaction() = 0;
  virtual void RollbackTransaction() = 0;
};

class Database {
 public:
  virtual ~Database() = default;
  // A closed connection without a connection string.
  virtual std::unique_ptr<Connection> CreateConnection() = 0;
};

}  // namespace quenta::ports
