// How kpg is called for a launch or attach configuration of the debugger.

export function adapterArguments(configuration: { request: string; socket?: unknown }): string[] {
  if (configuration.request !== 'attach') return ['dap'];
  const { socket } = configuration;
  if (typeof socket !== 'string' || socket === '')
    throw new Error("'socket' must be the path that the studio was given: vistrel-studio --dap SOCKET PAGE");
  return ['dap', '--attach', socket];
}
