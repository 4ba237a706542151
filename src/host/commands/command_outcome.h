#pragma once
#include "host/commands/command_text.h"
#include "icons/snapshots/command_result.h"

/// Adds what a result is in words for the user and returns its exit code. Nothing is added where
/// the command has words of its own, for Done and IsThere. A result that no command ends with is
/// described as NoAnswer.
int DescribeResult(CommandResult result, CommandText& told);

/// What a command left out: the first ones are told one by one, of the others the number.
class LeftOut {
  public:
    void Add(const wchar_t* pszName, const wchar_t* pszWhy);
    void AddTo(CommandText& told) const;

  private:
    CommandText lines;
    unsigned nCount = 0, nTold = 0;
};
