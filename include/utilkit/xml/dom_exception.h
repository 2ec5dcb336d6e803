// DOM_DOMException: why a DOM operation was refused.
//
// The DOM handles never throw. A member that can be refused (inserting a
// node where it may not go, a name with invalid characters, changing a
// read-only node) returns a null handle or false and, when the caller
// passes a DOM_DOMException, fills in the DOM's code and message.
//
//   DOM_DOMException why;
//   if (parent.appendChild(child, &why).isNull()) log(why.msg.transcode());
//
// Code 0 (NO_ERR) with the message "Out of memory" stands for an
// allocation failure inside the DOM, which has no DOM code of its own.
#pragma once

#include <cstdint>
#include <utility>

#include <utilkit/base/export.h>
#include <utilkit/xml/dom_string.h>

class UTILKIT_API DOM_DOMException {
 public:
  enum ExceptionCode : int16_t {
    NO_ERR = 0,
    INDEX_SIZE_ERR = 1,
    DOMSTRING_SIZE_ERR = 2,
    HIERARCHY_REQUEST_ERR = 3,
    WRONG_DOCUMENT_ERR = 4,
    INVALID_CHARACTER_ERR = 5,
    NO_DATA_ALLOWED_ERR = 6,
    NO_MODIFICATION_ALLOWED_ERR = 7,
    NOT_FOUND_ERR = 8,
    NOT_SUPPORTED_ERR = 9,
    INUSE_ATTRIBUTE_ERR = 10,
    INVALID_STATE_ERR = 11,
    SYNTAX_ERR = 12,
    INVALID_MODIFICATION_ERR = 13,
    NAMESPACE_ERR = 14,
    INVALID_ACCESS_ERR = 15,
    VALIDATION_ERR = 16,
    TYPE_MISMATCH_ERR = 17
  };

  DOM_DOMException() = default;
  DOM_DOMException(int16_t exceptionCode, DOMString message)
      : code(exceptionCode), msg(std::move(message)) {}

  // One of ExceptionCode.
  int16_t code = NO_ERR;
  // The DOM's description of the failure.
  DOMString msg;
};
