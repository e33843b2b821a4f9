#pragma once
// Text forms as data: each case names a type and a text, which reads as that
// type and is written back the same, or is refused as the case says.

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <sstream>
#include <string>

#include "Zet/Exception.h"
#include "Zet/TextForm.h"
#include "platform/TestData.h"

// Reads a T from `text` and writes it back; a record streams as it is written.
template <class T>
std::string rewritten(std::string const& text) {
  T const value = Zet::strepToValue<T>(Zet::String(text));
  std::string const written = Zet::strepOf(value).stdString();
  if constexpr (requires(std::ostream& os) { os << value; }) {
    if (written.starts_with("Value(")) {
      std::ostringstream os;
      os << value;
      EXPECT_EQ(os.str(), written);
    }
  }
  return written;
}

using Rewriters = std::map<std::string, std::string (*)(std::string const&)>;

// "Type | text": read and written back the same. "Type | text | ParseException"
// or "Type | text | RangeException: message": refused so.
inline void expectTextFormCases(std::string const& relative, Rewriters const& rewriters) {
  for (auto const& c : testDataCases(relative)) {
    SCOPED_TRACE(c.at(0) + " | " + c.at(1));
    auto const rewriter = rewriters.find(c[0]);
    ASSERT_NE(rewriter, rewriters.end());
    std::string refusal = "none";
    try {
      EXPECT_EQ(rewriter->second(c[1]), c[1]);
    } catch (Zet::RangeException const& e) {
      refusal = std::string("RangeException: ") + e.what();
    } catch (Zet::ParseException const&) {
      refusal = "ParseException";
    }
    EXPECT_EQ(refusal, c.size() > 2 ? c[2] : "none");
  }
}
