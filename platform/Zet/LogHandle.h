#pragma once
// A message of the log catalogue. Declaring one registers nothing and emits nothing.

#include "Zet/String.h"

namespace Zet {

enum class LogSeverity : int { emergency = 0, alert, critical, error, warning, notice, informational, debug };

// The recommended action of a message that asks for none.
extern char const* const NoActionRequired;

class LogHandle {
 public:
  LogHandle(String name, LogSeverity severity, String format, String explanation, String recommendedAction,
            double minimumInterval, double burst, bool rateLimitPerArgument)
      : name_(std::move(name)),
        severity_(severity),
        format_(std::move(format)),
        explanation_(std::move(explanation)),
        recommendedAction_(std::move(recommendedAction)),
        minimumInterval_(minimumInterval),
        burst_(burst),
        rateLimitPerArgument_(rateLimitPerArgument) {}

  String const& name() const { return name_; }
  LogSeverity severity() const { return severity_; }
  String const& format() const { return format_; }

 private:
  String name_;
  LogSeverity severity_;
  String format_;
  String explanation_;
  String recommendedAction_;
  double minimumInterval_;
  double burst_;
  bool rateLimitPerArgument_;
};

}  // namespace Zet
