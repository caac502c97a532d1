// Undo and redo. Documents are never changed, so that keeping them costs little.

const kLongest = 200;

export class History<State> {
    #past: State[] = [];
    #future: State[] = [];
    #present: State;
    #mark = "";
    #at = 0;

    constructor(state: State) {
        this.#present = state;
    }

    get present(): State {
        return this.#present;
    }
    get canUndo(): boolean {
        return this.#past.length > 0;
    }
    get canRedo(): boolean {
        return this.#future.length > 0;
    }

    /** Changes with the same mark within a second are one step: those of a slider that moves. */
    push(state: State, mark = "", now = performance.now()): void {
        if (mark === "" || mark !== this.#mark || now - this.#at > 1000) {
            this.#past.push(this.#present);
            if (this.#past.length > kLongest) this.#past.shift();
        }
        this.#present = state;
        this.#future = [];
        this.#mark = mark;
        this.#at = now;
    }

    undo(): State {
        return this.#step(this.#past, this.#future);
    }
    redo(): State {
        return this.#step(this.#future, this.#past);
    }

    #step(from: State[], to: State[]): State {
        const state = from.pop();
        if (state !== undefined) {
            to.push(this.#present);
            this.#present = state;
            this.#mark = "";
        }
        return this.#present;
    }
}
