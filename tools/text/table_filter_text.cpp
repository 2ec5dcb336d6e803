#include "table_filter_text.h"

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include <utilkit/base/number_text.h>
#include <utilkit/base/vc_variant.h>
#include <utilkit/table/table_filter_and.h>
#include <utilkit/table/table_filter_basic.h>
#include <utilkit/table/table_filter_or.h>

namespace utilkit::tool {

namespace {

// A parsed filter: a comparison, or an AND / OR of two or more parts.
struct Node {
  enum class Kind { Compare, And, Or } kind = Kind::Compare;
  std::vector<Node> parts;
  std::string column;
  VTTableFilterCompare compare = VTTableFilterCompare::Equal;
  VCVariant value;
  bool caseSensitive = false;
  bool negated = false;
};

struct Token {
  enum class Kind { End, Punct, Word, Quoted, Bracketed } kind = Kind::End;
  std::string text;
  size_t at = 0;  // 1-based character position
};

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool EndsWord(char c) {
  return IsSpace(c) || std::strchr("()!<>=&|'\"[", c) != nullptr;
}

bool Keyword(const Token& t, const char* word) {
  return t.kind == Token::Kind::Word && VCString(t.text).CompareNoCase(word) == 0;
}

bool IsReserved(const Token& t) {
  for (const char* w : {"AND", "OR", "NOT", "IS", "VALID", "INVALID", "CONTAINS", "STARTSWITH",
                        "ENDSWITH", "CASE"}) {
    if (Keyword(t, w)) return true;
  }
  return false;
}

class Parser {
 public:
  Parser(std::string_view text, std::vector<FilterTextValue>* textValues, size_t maxDepth)
      : m_text(text), m_textValues(textValues), m_maxDepth(maxDepth) {
    Advance();
  }

  bool Parse(Node* node, std::string* error) {
    bool ok = ParseOr(node) && m_error.empty();
    if (ok && m_token.kind != Token::Kind::End) ok = Fail("unexpected '" + m_token.text + "'");
    if (!ok) *error = "filter: " + m_error;
    return ok;
  }

 private:
  bool Is(const char* punct) const {
    return m_token.kind == Token::Kind::Punct && m_token.text == punct;
  }

  bool Fail(const std::string& what) {
    if (m_error.empty()) {
      m_error =
          what + (m_token.kind == Token::Kind::End ? " at the end"
                                                   : " at character " + std::to_string(m_token.at));
    }
    return false;
  }

  // Reads the next token into m_token; a bad token leaves m_error set.
  void Advance() {
    while (m_pos < m_text.size() && IsSpace(m_text[m_pos])) ++m_pos;
    m_token = Token{};
    m_token.at = m_pos + 1;
    if (m_pos == m_text.size()) return;
    const char c = m_text[m_pos];
    if (c == '\'' || c == '"') return ReadQuoted(c);
    if (c == '[') {
      const size_t close = m_text.find(']', m_pos);
      if (close == std::string_view::npos) {
        m_pos = m_text.size();
        Fail("unclosed '['");
        return;
      }
      m_token.kind = Token::Kind::Bracketed;
      m_token.text = m_text.substr(m_pos + 1, close - m_pos - 1);
      m_pos = close + 1;
      return;
    }
    for (const char* p : {"==", "!=", "<>", "<=", ">=", "&&", "||", "(", ")", "=", "<", ">", "!"}) {
      if (m_text.substr(m_pos).starts_with(p)) {
        m_token.kind = Token::Kind::Punct;
        m_token.text = std::string(p);
        m_pos += std::strlen(p);
        return;
      }
    }
    if (c == '&' || c == '|') {
      m_token.kind = Token::Kind::Punct;
      m_token.text = std::string(1, c);
      ++m_pos;
      return;
    }
    const size_t start = m_pos;
    while (m_pos < m_text.size() && !EndsWord(m_text[m_pos])) ++m_pos;
    m_token.kind = Token::Kind::Word;
    m_token.text = m_text.substr(start, m_pos - start);
  }

  void ReadQuoted(char quote) {
    m_token.kind = Token::Kind::Quoted;
    for (++m_pos; m_pos < m_text.size(); ++m_pos) {
      if (m_text[m_pos] != quote) {
        m_token.text += m_text[m_pos];
      } else if (m_pos + 1 < m_text.size() && m_text[m_pos + 1] == quote) {
        m_token.text += quote;
        ++m_pos;
      } else {
        ++m_pos;
        return;
      }
    }
    Fail("unclosed quote");
  }

  bool ParseList(Node* node, Node::Kind kind, const char* word, const char* symbol,
                 bool (Parser::*part)(Node*)) {
    Node first;
    if (!(this->*part)(&first)) return false;
    if (!Keyword(m_token, word) && !Is(symbol)) {
      *node = std::move(first);
      return true;
    }
    node->kind = kind;
    node->parts.push_back(std::move(first));
    while (Keyword(m_token, word) || Is(symbol)) {
      Advance();
      Node next;
      if (!(this->*part)(&next)) return false;
      node->parts.push_back(std::move(next));
    }
    return true;
  }

  bool ParseOr(Node* node) {
    return ParseList(node, Node::Kind::Or, "OR", "||", &Parser::ParseAnd);
  }
  bool ParseAnd(Node* node) {
    return ParseList(node, Node::Kind::And, "AND", "&&", &Parser::ParseUnary);
  }

  bool ParseUnary(Node* node) {
    if (!m_error.empty()) return false;
    bool negated = false;
    while (Keyword(m_token, "NOT") || Is("!")) {
      Advance();
      negated = !negated;
    }
    if (Is("(")) {
      if (m_depth >= m_maxDepth) {
        return Fail("groups nested more than " + std::to_string(m_maxDepth) + " deep");
      }
      Advance();
      ++m_depth;
      const bool ok = ParseOr(node);
      --m_depth;
      if (!ok) return false;
      if (!Is(")")) return Fail("expected ')'");
      Advance();
    } else if (!ParseComparison(node)) {
      return false;
    }
    node->negated = node->negated != negated;
    return true;
  }

  bool ParseComparison(Node* node) {
    const bool named = m_token.kind == Token::Kind::Bracketed ||
                       (m_token.kind == Token::Kind::Word && !IsReserved(m_token));
    if (!named) return Fail("expected a column name");
    node->column = m_token.text;
    Advance();
    if (Keyword(m_token, "IS")) {
      Advance();
      if (!Keyword(m_token, "VALID") && !Keyword(m_token, "INVALID")) {
        return Fail("expected VALID or INVALID");
      }
      node->compare = Keyword(m_token, "VALID") ? VTTableFilterCompare::IsValid
                                                : VTTableFilterCompare::IsInvalid;
      Advance();
      return m_error.empty();
    }
    if (!ParseOperator(&node->compare)) return Fail("expected a comparison operator");
    Advance();
    if (m_token.kind == Token::Kind::Quoted) {
      node->value.SetString(m_token.text.c_str());
    } else if (m_token.kind == Token::Kind::Word && !IsReserved(m_token)) {
      node->value = WordValue(m_token.text);
    } else {
      return Fail("expected a value");
    }
    if (m_textValues != nullptr && node->value.IsString()) {
      m_textValues->push_back({node->column, m_token.text, m_token.at});
    }
    Advance();
    if (Keyword(m_token, "CASE")) {
      node->caseSensitive = true;
      Advance();
    }
    return m_error.empty();
  }

  bool ParseOperator(VTTableFilterCompare* compare) const {
    static const std::pair<const char*, VTTableFilterCompare> kOperators[] = {
        {"=", VTTableFilterCompare::Equal},
        {"==", VTTableFilterCompare::Equal},
        {"!=", VTTableFilterCompare::NotEqual},
        {"<>", VTTableFilterCompare::NotEqual},
        {"<", VTTableFilterCompare::LessThan},
        {"<=", VTTableFilterCompare::LessOrEqual},
        {">", VTTableFilterCompare::GreaterThan},
        {">=", VTTableFilterCompare::GreaterOrEqual},
        {"CONTAINS", VTTableFilterCompare::Contains},
        {"STARTSWITH", VTTableFilterCompare::StartsWith},
        {"ENDSWITH", VTTableFilterCompare::EndsWith},
    };
    for (const auto& [text, value] : kOperators) {
      if (Is(text) || Keyword(m_token, text)) {
        *compare = value;
        return true;
      }
    }
    return false;
  }

  // A bare value: an integer or a floating-point number when it reads as
  // one, else the text itself.
  static VCVariant WordValue(const std::string& word) {
    int64_t integer = 0;
    double number = 0;
    if (VFAscToNum(word.c_str(), &integer)) return VCVariant(integer);
    if (VFAscToNum(word.c_str(), &number)) return VCVariant(number);
    return VCVariant(word.c_str());
  }

  std::string_view m_text;
  std::vector<FilterTextValue>* m_textValues;
  size_t m_maxDepth;
  size_t m_pos = 0;
  Token m_token;
  std::string m_error;
  size_t m_depth = 0;  // parentheses open around the current token
};

std::unique_ptr<VCUTableFilter> Build(const Node& node, bool negate);

// The parts [first, last) of an AND or OR joined as a balanced tree of
// pairs, so a list of n parts nests log2(n) deep, not n.
std::unique_ptr<VCUTableFilter> BuildPairs(const std::vector<Node>& parts, size_t first,
                                           size_t last, bool isAnd, bool negate) {
  if (last - first == 1) return Build(parts[first], negate);
  const size_t middle = first + (last - first) / 2;
  std::unique_ptr<VCUTableFilterCompound> pair;
  if (isAnd) {
    pair = std::make_unique<VCUTableFilterAND>();
  } else {
    pair = std::make_unique<VCUTableFilterOR>();
  }
  std::unique_ptr<VCUTableFilter> left = BuildPairs(parts, first, middle, isAnd, negate);
  std::unique_ptr<VCUTableFilter> right = BuildPairs(parts, middle, last, isAnd, negate);
  pair->SetFilters(left.release(), right.release());
  return pair;
}

// The filter of `node`, with `negate` carried down to the comparisons.
std::unique_ptr<VCUTableFilter> Build(const Node& node, bool negate) {
  negate = negate != node.negated;
  if (node.kind == Node::Kind::Compare) {
    auto filter = std::make_unique<VCUTableFilterBasic>();
    filter->SetColumnKeyword(node.column.c_str());
    filter->SetCompare(node.compare);
    filter->SetCompareValue(node.value);
    filter->SetCaseSensitive(node.caseSensitive ? 1 : 0);
    filter->SetInclusive(negate ? 0 : 1);
    return filter;
  }
  // NOT (A AND B) is NOT A OR NOT B, and the other way round.
  const bool isAnd = (node.kind == Node::Kind::And) != negate;
  return BuildPairs(node.parts, 0, node.parts.size(), isAnd, negate);
}

}  // namespace

std::unique_ptr<VCUTableFilter> ParseTableFilter(std::string_view text, std::string* error,
                                                 std::vector<FilterTextValue>* textValues,
                                                 size_t maxDepth) {
  Node root;
  Parser parser(text, textValues, maxDepth);
  if (!parser.Parse(&root, error)) return nullptr;
  return Build(root, false);
}

}  // namespace utilkit::tool
