// Splits names into scopes.

/** Splits at each "::" outside brackets: those within belong to template arguments. */
export function splitScopes(scope: string): string[] {
  const scopes: string[] = [];
  let depth = 0;
  let start = 0;
  for (let index = 0; index < scope.length; ++index) {
    const character = scope[index]!;
    if ("<(".includes(character)) {
      ++depth;
    } else if (">)".includes(character)) {
      depth = Math.max(0, depth - 1);
    } else if (character === ":" && scope[index + 1] === ":" && depth === 0) {
      scopes.push(scope.slice(start, index));
      start = index + 2;
      ++index;
    }
  }
  const last = scope.slice(start);
  return [...scopes, last].filter((name) => name !== "");
}
