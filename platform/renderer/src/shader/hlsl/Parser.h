// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Builder.h"
#include "shader/hlsl/Lexer.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace helvantine::hlsl
{

/// Reads a text of shader model 5 into a program.
///
/// Names are declared before they are used, so every expression is checked as it is read. An error of grammar ends the
/// reading; what else is wrong is collected.
class Parser
{
public:
    Parser(const Tokens& tokens, Program& program);

    void parse();

    const std::vector<Function*>* findFunctions(std::string_view name) const;

private:
    struct Entity
    {
        const Symbol* symbol = nullptr;
        const Type* type = nullptr;
        std::vector<Function*> functions;
        const Symbol* owner = nullptr; ///< of a field or method, within a method: the object
    };
    using Scope = std::unordered_map<std::string_view, Entity>;

    struct Modifiers
    {
        bool isStatic = false;
        bool isConst = false;
        bool isUniform = false;
        bool isIn = false;
        bool isOut = false;
        std::string interpolation; ///< and precise: what is handed on as it is
        bool packsRows = false;    ///< the order of matrices
    };

    struct Depth;

    // Tokens
    const Token& peek(size_t ahead = 0) const;
    bool is(std::string_view what) const { return peek().is(what); }
    bool accept(std::string_view what);
    bool expect(std::string_view what); ///< false: the reading has ended
    bool atEnd() const { return peek().kind == Token::Kind::End; }
    const Token& next();
    void stop(const Token& token, const std::string& words);
    void skipBraces();             ///< from an opening brace behind its closing one
    std::string takeParentheses(); ///< their text, without blanks

    // Names
    const Entity* find(std::string_view name) const;
    bool declareName(const Token& name);
    Symbol* declare(Symbol::Kind kind, const Token& name, const Type* type, bool isConst);
    bool isName(const Token& token) const;
    bool refusesName(const Token& token);

    // Types
    bool startsType() const;
    const Type* parseType(); ///< error with words if none stands here
    const Type* parseNumberTemplate(bool isMatrix);
    const Type* parseObject(const Token& name);
    const Type* parseTexture(TextureKind kind);
    const Type* findBuiltIn(std::string_view name);
    const Type* parseDimensions(const Type* element);
    Modifiers parseModifiers();
    const Type* parseStructure();
    std::vector<size_t> parseFields(Structure& structure); ///< where methods begin
    void parseMethods(const Structure& structure, const Type* type, const std::vector<size_t>& places);
    const Entity* findMethod(const Type* type, std::string_view name) const;

    // Declarations outside functions
    void parseGlobal();
    void parseBuffer();
    void parseTypedef();
    void parseGlobalVariables(const Modifiers& modifiers, const Type* type);
    void parseGlobalVariable(const Modifiers& modifiers, const Type* element);
    bool refusesConstruct();
    std::string parseSemantic(); ///< with its colon; empty without
    std::string parsePlace();    ///< register or packoffset, with its colon
    void skipAnnotations();
    void skipSamplerState(const Token& name);
    void parseFunction(const Modifiers& modifiers, const Type* result);
    void parseBody(Function& function, Scope parameters);
    Parameter parseParameter();
    Function* enterFunction(Function function, const Token& name, Entity& entity);

    // Statements
    Statement* makeStatement(Statement::Kind kind);
    Statement* parseBlock(bool opensScope);
    Statement* parseStatement();
    Statement* parseUnder(); ///< a statement in a scope of its own
    Statement* parseDeclaration();
    Statement* parseIf(Statement* made);
    Statement* parseFor(Statement* made);
    Statement* parseWhile(Statement* made);
    Statement* parseDo(Statement* made);
    Statement* parseSwitch(Statement* made);
    Statement* parseCase(Statement* made);
    Statement* parseReturn(Statement* made);
    std::string parseAttribute();
    Expression* parseCondition();

    // Expressions
    Expression* parseExpression();
    Expression* parseAssignment();
    Expression* parseConditional();
    Expression* parseBinary(int precedence);
    Expression* parseUnary();
    Expression* parsePostfix();
    Expression* parsePrimary();
    Expression* parseName();
    Expression* callMethod(const Token& name, Expression* object, const Entity& method);
    Expression* parseLiteral();
    Expression* parseInitializer();
    Expressions parseArguments();

    const Tokens& m_tokens;
    Program& m_program;
    Builder m_builder;
    std::vector<Scope> m_scopes;
    std::unordered_map<const Structure*, Scope> m_methods;
    struct Body
    {
        Function* function;
        Scope parameters;
        size_t place;
    };
    std::vector<Body> m_bodies;       ///< of methods whose structure is being read
    const Symbol* m_object = nullptr; ///< within a method: its object
    Scope m_ended;                    ///< what for statements declared whose scope has ended
    Function* m_function = nullptr;
    std::string m_functionAttributes;
    const Type* m_switched = nullptr;
    bool m_hasReturned = false;
    size_t m_at = 0;
    uint32_t m_depth = 0;
    uint32_t m_loops = 0;
    uint32_t m_switches = 0;
};

} // namespace helvantine::hlsl
