/** Something wrong or doubtful in a graph, and where. */
export interface Problem {
    /** JSON pointer (RFC 6901) to the value in the document, such as `/shaders/cloth/fRepeatU`; "" for all of it. */
    readonly pointer: string;
    /** What is expected there and what is there, without the place. */
    readonly message: string;
    /** Of text that isn't JSON: from 1. */
    readonly line?: number;
    readonly column?: number;
}

/** What `Job.done` and others reject with for a graph or request that can't be had. */
export class EngineError extends Error implements Problem {
    override readonly name = "EngineError";
    readonly pointer: string;
    readonly line?: number;
    readonly column?: number;
    constructor(problem: Problem) {
        super(problem.message);
        this.pointer = problem.pointer;
        if (problem.line !== undefined) this.line = problem.line;
        if (problem.column !== undefined) this.column = problem.column;
    }
}

/** What `Job.done` rejects with when a job was cancelled, by itself or by a newer one in its slot. */
export class CancelledError extends Error {
    override readonly name = "CancelledError";
}

/** With the line and column that a message of the parser names. */
export function placed(problem: Problem): Problem {
    const place = /^not JSON: .*?at line (\d+), column (\d+)/.exec(problem.message);
    return place === null ? problem : { ...problem, line: Number(place[1]), column: Number(place[2]) };
}
