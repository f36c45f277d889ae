// SPDX-License-Identifier: MIT
#include "shader/hlsl/Intrinsics.h"
#include "shader/hlsl/Names.h"
#include "shader/hlsl/Parser.h"

#include <bit>
#include <string>
#include <unordered_map>

namespace helvantine::hlsl
{

namespace
{

constexpr uint32_t maxNesting = 512;

std::string quoted(std::string_view word)
{
    return "'" + std::string(word) + "'";
}

const std::unordered_map<std::string_view, int> precedences = {
    {"||", 1}, {"&&", 2}, {"|", 3},  {"^", 4},  {"&", 5}, {"==", 6}, {"!=", 6}, {"<", 7},  {">", 7},
    {"<=", 7}, {">=", 7}, {"<<", 8}, {">>", 8}, {"+", 9}, {"-", 9},  {"*", 10}, {"/", 10}, {"%", 10}};

const std::unordered_map<std::string_view, int> assignments = {{"=", 0},  {"+=", 0},  {"-=", 0}, {"*=", 0},
                                                               {"/=", 0}, {"%=", 0},  {"&=", 0}, {"|=", 0},
                                                               {"^=", 0}, {"<<=", 0}, {">>=", 0}};

int precedenceOf(const Token& token)
{
    const auto found = token.kind == Token::Kind::Symbol ? precedences.find(token.text) : precedences.end();
    return found == precedences.end() ? 0 : found->second;
}

} // namespace

struct Parser::Depth
{
    explicit Depth(Parser& parser) : m_parser(parser)
    {
        if (++parser.m_depth > maxNesting)
            parser.stop(parser.peek(), "expressions nest deeper than " + std::to_string(maxNesting));
    }
    ~Depth() { --m_parser.m_depth; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

private:
    Parser& m_parser;
};

Expression* Parser::parseExpression()
{
    Expression* made = parseAssignment();
    while (is(",") && !atEnd()) {
        const Position at = next().at;
        made = m_builder.sequence(at, made, parseAssignment());
    }
    return made;
}

Expression* Parser::parseAssignment()
{
    const Depth depth(*this);
    Expression* target = parseConditional();
    if (peek().kind != Token::Kind::Symbol || !assignments.contains(peek().text))
        return target;
    const Token& op = next();
    Expression* value = parseAssignment();
    return m_builder.assign(op.at, op.text, target, value);
}

Expression* Parser::parseConditional()
{
    Expression* condition = parseBinary(1);
    if (!is("?"))
        return condition;
    const Depth depth(*this);
    const Position at = next().at;
    Expression* yes = parseAssignment();
    expect(":");
    Expression* no = parseAssignment();
    return m_builder.conditional(at, condition, yes, no);
}

Expression* Parser::parseBinary(int precedence)
{
    Expression* left = parseUnary();
    for (int found = precedenceOf(peek()); found >= precedence && found > 0; found = precedenceOf(peek())) {
        const Token& op = next();
        Expression* right = parseBinary(found + 1);
        left = m_builder.binary(op.at, op.text, left, right);
    }
    return left;
}

Expression* Parser::parseUnary()
{
    const Depth depth(*this);
    const Token& token = peek();
    if (token.kind == Token::Kind::Symbol) {
        if (token.is("++") || token.is("--")) {
            next();
            return m_builder.increment(token.at, token.text, parseUnary(), true);
        }
        if (token.is("-") || token.is("+") || token.is("!") || token.is("~")) {
            next();
            return m_builder.unary(token.at, token.text, parseUnary());
        }
        if (token.is("(")) {
            next();
            const bool isCast = startsType() && !peek(1).is("(") && !peek(1).is(".");
            if (isCast) {
                const Type* type = parseDimensions(parseType());
                expect(")");
                return m_builder.cast(token.at, type, parseUnary());
            }
            --m_at;
        }
    }
    return parsePostfix();
}

Expression* Parser::parsePostfix()
{
    Expression* made = parsePrimary();
    for (; !atEnd();) {
        const Token& token = peek();
        if (accept("[")) {
            Expression* place = parseExpression();
            expect("]");
            made = m_builder.index(token.at, made, place);
        } else if (accept(".")) {
            const Token& name = next();
            if (!name.isWord())
                stop(name, "a member is missing before " + quoted(name.text));
            else if (const Entity* found = findMethod(made->type, name.text); found && is("("))
                made = callMethod(name, made, *found);
            else if (is("("))
                made = m_builder.method(name.at, made, name.text, parseArguments());
            else
                made = m_builder.member(name.at, made, name.text);
        } else if (token.is("++") || token.is("--")) {
            next();
            made = m_builder.increment(token.at, token.text, made, false);
        } else {
            break;
        }
    }
    return made;
}

Expression* Parser::callMethod(const Token& name, Expression* object, const Entity& method)
{
    Expressions arguments = parseArguments();
    arguments.insert(arguments.begin(), object);
    return m_builder.call(name.at, method.functions, std::move(arguments), true);
}

Expressions Parser::parseArguments()
{
    Expressions arguments;
    if (!expect("("))
        return arguments;
    while (!atEnd() && !is(")")) {
        arguments.push_back(parseAssignment());
        if (!is(")") && !expect(","))
            break;
    }
    expect(")");
    return arguments;
}

Expression* Parser::parsePrimary()
{
    const Token& token = peek();
    if (token.kind == Token::Kind::Int || token.kind == Token::Kind::Float) {
        Expression* number = parseLiteral();
        const bool isSwizzled = token.text.ends_with('.') && peek().isWord(); // "1.xxx"
        return isSwizzled ? m_builder.member(peek().at, number, next().text) : number;
    }
    if (accept("(")) {
        Expression* inner = parseExpression();
        expect(")");
        return inner;
    }
    if (token.isWord()) {
        if (token.is("true") || token.is("false")) {
            next();
            return m_builder.constant(token.at, m_builder.types().scalar(Base::Bool),
                                      {token.is("true") ? 1U : 0U});
        }
        if (startsType()) {
            const Type* type = parseType();
            Expressions arguments = parseArguments();
            if (type->isNumber())
                return m_builder.construct(token.at, type, arguments);
            if (!type->isError())
                m_builder.fail(token.at, quoted(type->name()) + " can't be made like this");
            return m_builder.error(token.at);
        }
        if (!isKeyword(token.text))
            return parseName();
    }
    stop(token, token.kind == Token::Kind::End ? "an expression is missing before the end of the text"
                                               : "an expression is missing before " + quoted(token.text));
    return m_builder.error(token.at);
}

Expression* Parser::parseName()
{
    const Token& name = next();
    const Entity* entity = find(name.text);
    if (entity && entity->owner) {
        Expression* object = m_builder.variable(name.at, entity->owner);
        const Entity* method = is("(") ? findMethod(object->type, name.text) : nullptr;
        return method ? callMethod(name, object, *method) : m_builder.member(name.at, object, name.text);
    }
    if (entity && entity->symbol)
        return m_builder.variable(name.at, entity->symbol);
    if (is("(")) {
        const bool isKnown = entity && !entity->functions.empty();
        const std::vector<Function*> functions = isKnown ? entity->functions : std::vector<Function*>();
        if (isKnown && !isIntrinsic(name.text))
            return m_builder.call(name.at, functions, parseArguments());
        if (isKnown || isIntrinsic(name.text)) {
            Expressions arguments = parseArguments();
            // The author's own function goes before the language's if it takes the arguments as they are.
            for (Function* one : functions) {
                bool fits = one->parameters.size() == arguments.size();
                for (size_t i = 0; fits && i < arguments.size(); ++i)
                    fits = one->parameters[i].symbol->type == arguments[i]->type;
                if (fits)
                    return m_builder.call(name.at, functions, std::move(arguments));
            }
            return m_builder.intrinsic(name.at, name.text, std::move(arguments));
        }
    }
    const std::string_view instead = findGlslHabit(name.text);
    if (!instead.empty())
        m_builder.fail(name.at, quoted(name.text) + " is GLSL; HLSL has " + std::string(instead));
    else if (m_ended.contains(name.text))
        m_builder.fail(name.at, quoted(name.text) + " was declared in a for statement that has ended");
    else
        m_builder.fail(name.at, quoted(name.text) + (is("(") ? " is no function" : " isn't declared"));
    if (is("("))
        parseArguments();
    return m_builder.error(name.at);
}

Expression* Parser::parseLiteral()
{
    const Token& token = next();
    if (token.isDouble)
        m_builder.warn(token.at,
                       quoted(token.text) + " is a double, which isn't supported: it becomes a float");
    if (token.kind == Token::Kind::Float)
        return m_builder.constant(token.at, m_builder.types().scalar(Base::Float),
                                  {std::bit_cast<uint32_t>(token.number)});
    return m_builder.constant(token.at, m_builder.types().scalar(token.isUnsigned ? Base::Uint : Base::Int),
                              {token.integer});
}

/// Braces, nested as the author likes, or an expression.
Expression* Parser::parseInitializer()
{
    const Depth depth(*this);
    const Token& token = peek();
    if (!accept("{"))
        return parseAssignment();
    Expressions elements;
    while (!atEnd() && !is("}")) {
        elements.push_back(parseInitializer());
        if (!is("}") && !expect(","))
            break;
    }
    expect("}");
    return m_builder.list(token.at, std::move(elements));
}

} // namespace helvantine::hlsl
