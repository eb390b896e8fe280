// What names and expressions of a statement mean, and where the operands of its operators begin and end.
#pragma once

#include "sql/sql_scope.h"

namespace tav::jet {

class Operands {
 public:
    // The statement outlives this.
    explicit Operands(const Statement& statement) : statement_(statement) {}

    struct Meaning {
        bool found = false;
        Operand operand;
        TextView source;  // the name of the table or select it belongs to
    };
    // `qualifier` may be empty.
    Meaning Resolve(const Scope& scope, TextView qualifier, TextView name) const;

    // One name, literal, call or parenthesis that ends before, or begins at, a token; empty when there is
    // none.
    TokenRange TermBefore(std::size_t end) const;
    TokenRange TermAfter(std::size_t begin) const;
    // The same with the terms it is added to, multiplied with and so on.
    TokenRange SumBefore(std::size_t end) const;
    TokenRange SumAfter(std::size_t begin) const;

    Operand OperandOf(TokenRange expression) const;

 private:
    const Token& At(std::size_t token) const { return statement_.At(token); }
    Meaning ResolveIn(const Source& source, TextView name) const;
    TextView NameOf(const ResultColumn& column) const;
    Operand ResultOf(TokenRange call) const;
    std::size_t Closed(std::size_t open) const;

    const Statement& statement_;
};

// + - * /
bool IsArithmetic(const Token& token);

}  // namespace tav::jet
