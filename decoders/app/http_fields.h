// The header fields of HTTP by their names, and what their values and request targets are made of: what is told beside the
// lines of a message where all is asked for.
#pragma once
#include "core/decoder.h"

namespace qxview {

// What a field's value is made of.
enum class HttpForm : uint8_t {
  kText,
  kNumber,
  kItems,         // a list of words with parameters
  kValue,         // one word with parameters
  kDirectives,    // parameters alone, parted by commas
  kParameters,    // parameters alone, parted by semicolons
  kCookies,
  kSetCookie,
  kCredentials,   // a scheme with its token or parameters
  kRange,         // bytes=0-499,-500
  kContentRange,  // bytes 0-499/1234
  kVia,
  kWarning,
  kPolicy,        // directives of words, parted by semicolons
};

struct HttpField {
  const char* name;
  HttpForm form;
  const char* label;   // of its words
};

// Null for a name that is not registered.
const HttpField* FindHttpField(const Field& name);

// A line "Name: value" over the whole header line, and under it the value's pieces.
void ShowHttpField(const Place& in, const Field& whole, const Field& name, const Field& value);
// What a value of that form is made of.
void ShowHttpValue(const Place& in, const HttpField& field, const Field& value);
// A scheme and its token or parameters, opened where the scheme tells how.
void ShowHttpCredentials(const Place& in, Field value);

// The pieces of a request's target: scheme and authority of an absolute one, path, each parameter of the query.
void ShowHttpTarget(const Place& in, const Field& target);
// "name=value" pieces between '&', their escapes resolved, under `label`.
void ShowHttpPairs(const Place& in, const Field& pairs, const char* label);

}  // namespace qxview
